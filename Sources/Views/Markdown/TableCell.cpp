#include "TableCell.h"

#include "Pipeline/TableText.h"

#include <algorithm>

namespace Korvi::TableCell {

std::vector<Markdown::Run> runs(const QString& markdown) {
    return Markdown::parseInlineMarkdown(Markdown::cleanLatex(markdown));
}

Markup markup(const QString& markdown, const QString& codeFamily, const QColor& code, const QColor& codeBackground) {
    const std::vector<Markdown::Run> shown = runs(markdown);
    Markup made;
    made.isRich = std::ranges::any_of(shown, [](const auto& run) { return run.style != Markdown::Style::base; });
    for (const Markdown::Run& run : shown) {
        const QString text = made.isRich ? run.text.toHtmlEscaped() : run.text;
        switch (run.style) {
        case Markdown::Style::base: made.text += text; break;
        case Markdown::Style::bold: made.text += QStringLiteral("<b>%1</b>").arg(text); break;
        case Markdown::Style::italic: made.text += QStringLiteral("<i>%1</i>").arg(text); break;
        case Markdown::Style::code:
            made.text += QStringLiteral("<span style=\"font-family:'%1';color:%2;background-color:%3\">%4</span>")
                             .arg(codeFamily, code.name(), codeBackground.name(), text);
            break;
        }
    }
    return made;
}

}
