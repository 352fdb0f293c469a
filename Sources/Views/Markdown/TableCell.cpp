#include "TableCell.h"

#include "Pipeline/TableText.h"

#include <algorithm>

namespace Korvi::TableCell {

std::vector<Markdown::Run> runs(const QString& markdown) {
    return Markdown::parseInlineMarkdown(Markdown::cleanLatex(markdown));
}

Markup markup(const QString& markdown, const QFont& codeFont, const QColor& code, const QColor& codeBackground) {
    const std::vector<Markdown::Run> shown = runs(markdown);
    Markup made;
    made.isRich = std::ranges::any_of(shown, [](const auto& run) { return run.style != Markdown::Style::base; });
    const QString codeStart = QStringLiteral("<span style=\"font-family:'%1';font-size:%2px;font-weight:%3;color:%4;"
                                             "background-color:%5\">")
                                  .arg(codeFont.family())
                                  .arg(codeFont.pixelSize())
                                  .arg(codeFont.weight())
                                  .arg(code.name(), codeBackground.name());
    for (const Markdown::Run& run : shown) {
        made.plain += run.text;
        const QString text = made.isRich ? run.text.toHtmlEscaped() : run.text;
        switch (run.style) {
        case Markdown::Style::base: made.text += text; break;
        case Markdown::Style::bold: made.text += QStringLiteral("<b>%1</b>").arg(text); break;
        case Markdown::Style::italic: made.text += QStringLiteral("<i>%1</i>").arg(text); break;
        case Markdown::Style::code: made.text += codeStart + text + QStringLiteral("</span>"); break;
        }
    }
    return made;
}

}
