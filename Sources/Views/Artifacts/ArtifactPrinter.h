#pragma once

#include "PdfPrinter.h"

#include <QObject>

namespace Korvi {

// PDF made on this machine: pages, pictures, diagrams and Markdown as a web engine prints them, in a process of its own
// without a network; code and other text straight from here.
class ArtifactPrinter : public QObject, public PdfPrinter {
    Q_OBJECT

public:
    static constexpr int patience = 40'000; // milliseconds

    using QObject::QObject;

    Async<QByteArray> print(QString kind, QString title, QString text) override;

    // A heading and the text below it, in a typewriter's letters, on A4.
    static QByteArray textPdf(const QString& title, const QString& text);
};

}
