#pragma once

#include <QString>

namespace Korvi {

// The page of one diagram. The renderer keeps one of each colour scheme and draws every diagram in it.
struct MermaidWebView {
    // A page that draws `code`, or shows it as text when it is no diagram, and posts its height to the message handler
    // "heightHandler". Diagrams come with "strict" security: no script, no link, no HTML of their own.
    static QString generateMermaidHTML(const QString& code, bool isDark);
};

}
