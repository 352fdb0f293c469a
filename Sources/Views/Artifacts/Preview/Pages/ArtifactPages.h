#pragma once

#include <QString>

namespace Korvi::ArtifactPages {

// What an artifact's page may do: run its own script and show what it carries in itself. Nothing is fetched.
QString policy();

// A page that shows the artifact: "html" in a frame without an origin, windows, forms or dialogs, "svg" as a picture, in
// which no script runs. Empty for other kinds.
QString previewPage(const QString& kind, const QString& text);

// A page to be printed, and the expression that becomes true in it when it is complete; empty: when it has come.
struct Printable {
    QString page;
    QString isReady;
};

// For "html", "svg", "mermaid" and "markdown"; an empty page for other kinds.
Printable printPage(const QString& kind, const QString& title, const QString& text);

}
