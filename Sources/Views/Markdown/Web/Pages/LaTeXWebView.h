#pragma once

#include <QString>

namespace Korvi {

// The page of one formula. What the application shows is drawn from the layout of this page's library and style; the
// renderer keeps one such page and draws every formula in it.
struct LaTeXWebView {
    // Sizes of the page, in its pixels.
    static constexpr int blockSize = 18;
    static constexpr int inlineSize = 16;
    static constexpr int blockPadding = 16; // above and below
    static constexpr int inlinePadding = 4;

    // A page that draws `formula` in white on nothing and posts its height to the message handler "heightHandler".
    static QString generateLaTeXHTML(const QString& formula, bool isBlock);
};

}
