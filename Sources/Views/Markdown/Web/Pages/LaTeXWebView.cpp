#include "LaTeXWebView.h"

#include "WebPage.h"

namespace Korvi {

using namespace Qt::Literals;

QString LaTeXWebView::generateLaTeXHTML(const QString& formula, bool isBlock) {
    const QString dist = QLatin1StringView(WebPage::origin) + u"/npm/katex@0.16.9/dist/"_s;
    const QString libraries =
        u"<link rel=\"stylesheet\" href=\"%1katex.min.css\">\n<script src=\"%1katex.min.js\"></script>\n"_s.arg(dist);

    const QString style = uR"(*, .katex-display { margin: 0; padding: 0; box-sizing: border-box; }
body {
    background: transparent;
    display: flex;
    align-items: center;
    justify-content: %1;
    min-height: 100%;
    padding: %2;
    font-family: system-ui, sans-serif;
}
#formula { color: #ffffff; font-size: %3px; }
#formula .katex, #formula .mord, #formula .mbin, #formula .mrel, #formula .mop, #formula .minner, #formula .mopen,
#formula .mclose, #formula .mpunct, #formula .frac-line, #formula .sqrt-sign { color: #ffffff !important; }
)"_s.arg(
        isBlock ? u"center"_s : u"flex-start"_s, isBlock ? u"%1px"_s.arg(blockPadding) : u"%1px 0"_s.arg(inlinePadding))
                              .arg(isBlock ? blockSize : inlineSize);

    // The formula last: it may look like a place for another argument.
    const QString script = uR"(
const formula = '%2';
const element = document.getElementById('formula');
try {
    katex.render(formula, element, { throwOnError: false, displayMode: %1, output: 'html' });
} catch (error) {
    element.textContent = formula;
}
setTimeout(() => {
    window.webkit?.messageHandlers?.heightHandler?.postMessage(document.body.scrollHeight);
}, 200);
)"_s.arg(isBlock ? u"true"_s : u"false"_s, WebPage::escapedForScript(formula));

    return WebPage::assemble(libraries, style, u"<div id=\"formula\"></div>\n"_s, script);
}

}
