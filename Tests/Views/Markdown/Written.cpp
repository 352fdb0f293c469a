#include "Written.h"

#include "Match.h"

namespace Korvi::Markdown {

namespace {

std::string utf8(const QString& text) {
    QString shown = text;
    return shown.replace('\n', "⏎").toStdString();
}

std::string joined(const QStringList& cells) {
    return utf8(cells.join(" ¦ "));
}

}

std::string written(const Block& block) {
    const auto braced = [](const std::string& name, const QString& text) { return name + " {" + utf8(text) + "}"; };
    return match(
        block.value, [&](const Block::Header& b) { return braced("h" + std::to_string(b.level), b.content); },
        [&](const Block::ListItem& b) { return braced("item", b.content); },
        [&](const Block::NumberedListItem& b) { return braced(std::to_string(b.number), b.content); },
        [&](const Block::CodeBlock& b) {
            return braced("code" + (b.language ? ":" + utf8(*b.language) : std::string()), b.code);
        },
        [&](const Block::MermaidBlock& b) { return braced("mermaid", b.code); },
        [&](const Block::LatexBlock& b) { return braced("tex", b.formula); },
        [&](const Block::Paragraph& b) { return braced("p", b.content); },
        [&](const Block::Table& b) {
            std::string all = "table {" + joined(b.headers) + "} ";
            for (const Alignment alignment : b.alignments)
                all += "<=>"[int(alignment)];
            for (const QStringList& row : b.rows)
                all += " {" + joined(row) + "}";
            return all;
        },
        [&](const Block::Image& b) {
            return braced("image", b.url) + (b.alt ? " alt {" + utf8(*b.alt) + "}" : std::string());
        });
}

std::string written(const std::vector<Run>& runs) {
    constexpr const char* marks[] = {"", "B", "I", "C"};
    std::string all;
    for (const Run& run : runs)
        all += marks[int(run.style)] + ("{" + utf8(run.text) + "}");
    return all;
}

std::string written(const Segment& segment) {
    if (const auto* special = std::get_if<SpecialSegment>(&segment))
        return "special " + written(special->block);
    std::string all = "text";
    for (const TextBlock& block : std::get<TextSegment>(segment).blocks)
        all += " [" + std::to_string(int(block.kind)) + std::to_string(block.level) + utf8(block.marker) + "]" +
            written(block.runs);
    return all;
}

}
