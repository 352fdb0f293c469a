#include "Inline.h"

namespace Korvi::Markdown {

std::vector<TextPart> parseInlineLatex(QStringView text) {
    return {{text.toString(), false}};
}
QString stripUnclosedMarkers(const QString& text) {
    return text;
}
std::vector<Run> parseInlineMarkdown(const QString& text) {
    return {{text, Style::base}};
}

}
