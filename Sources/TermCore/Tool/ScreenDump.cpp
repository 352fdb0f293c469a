#include "Tool/ScreenDump.h"

#include <algorithm>
#include <cstdio>
#include <vector>

namespace termcore::tool {
namespace {

struct StyleName {
    CharacterStyle bit;
    const char* name;
};
constexpr StyleName styleNames[] = {
    {CharacterStyle::bold, "bold"},
    {CharacterStyle::dim, "dim"},
    {CharacterStyle::italic, "italic"},
    {CharacterStyle::underline, "underline"},
    {CharacterStyle::blink, "blink"},
    {CharacterStyle::inverse, "inverse"},
    {CharacterStyle::invisible, "invisible"},
    {CharacterStyle::crossedOut, "crossedOut"},
};
constexpr const char* underlineNames[] = {"none", "single", "double", "curly", "dotted", "dashed"};
constexpr const char* renderNames[] = {"single", "doubleWidth", "doubledTop", "doubledDown"};

void appendQuoted(std::string& out, std::string_view text) {
    out += '"';
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (byte < 0x20 || byte == 0x7F) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\u%04x", byte);
            out += escaped;
        } else {
            out += c;
        }
    }
    out += '"';
}

std::string quoted(std::string_view text) {
    std::string out;
    appendQuoted(out, text);
    return out;
}

void trimBlanks(std::string& text) {
    text.erase(text.find_last_not_of(' ') + 1);
}

std::string cellText(const Terminal& terminal, Cell cell) {
    return cell.code() == 0 ? " " : terminal.character(static_cast<std::int32_t>(cell.code()));
}

std::string text(const Terminal& terminal, std::span<const Cell> cells) {
    std::string out;
    for (const Cell& cell : cells) {
        if (cell.text != Cell::continuation)
            out += cellText(terminal, cell);
    }
    return out;
}

/// What a run has in common, as JSON members.
std::string attributeJson(const Terminal& terminal, Cell cell) {
    const CharData data = terminal.unfolded(cell);
    std::string out =
        "\"fg\":" + quoted(describe(data.attribute.fg)) + ",\"bg\":" + quoted(describe(data.attribute.bg));
    std::string styles;
    for (const auto& [bit, name] : styleNames) {
        if (contains(data.attribute.style, bit))
            styles += (styles.empty() ? "" : ",") + quoted(name);
    }
    out += ",\"style\":[" + styles + "]";
    if (data.attribute.underlineStyle != UnderlineStyle::none)
        out +=
            std::string(",\"underline\":\"") + underlineNames[static_cast<int>(data.attribute.underlineStyle)] + "\"";
    if (!data.attribute.underlineColor.isAbsent())
        out += ",\"underlineColor\":" + quoted(describe(data.attribute.underlineColor));
    if (const std::string* link = data.getPayload())
        out += ",\"link\":" + quoted(*link);
    return out;
}

std::string rowJson(const Terminal& terminal, std::size_t row, std::vector<Cell>& scratch) {
    const CircularBufferLineList& lines = terminal.displayBuffer().lines;
    const auto cells = lines.read(row, scratch);
    std::string runs;
    for (std::size_t start = 0; start < cells.size();) {
        std::size_t end = start + 1;
        while (end < cells.size() && cells[end].style == cells[start].style)
            ++end;
        const auto run = cells.subspan(start, end - start);
        std::string content = text(terminal, run);
        if (cells[start].style != 0 || content.find_first_not_of(' ') != std::string::npos)
            runs += (runs.empty() ? "" : ",") + std::string("{\"col\":") + std::to_string(start) +
                ",\"cols\":" + std::to_string(run.size()) + ",\"text\":" + quoted(content) + "," +
                attributeJson(terminal, cells[start]) + "}";
        start = end;
    }
    std::string content = text(terminal, cells);
    trimBlanks(content);
    std::string out = "{\"text\":" + quoted(content);
    if (lines.isWrapped(row))
        out += ",\"wrapped\":true";
    if (lines.renderMode(row) != BufferLine::RenderLineMode::single)
        out += std::string(",\"render\":\"") + renderNames[static_cast<int>(lines.renderMode(row))] + "\"";
    return out + ",\"runs\":[" + runs + "]}";
}

}

std::string describe(const Attribute::Color& color) {
    using Kind = Attribute::Color::Kind;
    switch (color.kind) {
    case Kind::ansi256: return "index " + std::to_string(color.code());
    case Kind::trueColor: {
        char text[8];
        std::snprintf(text, sizeof text, "#%02x%02x%02x", color.red, color.green, color.blue);
        return text;
    }
    case Kind::defaultInvertedColor: return "inverse default";
    case Kind::defaultColor:
    case Kind::absent: break;
    }
    return "default";
}

std::string rowText(const Terminal& terminal, int row) {
    std::vector<Cell> scratch;
    const CircularBufferLineList& lines = terminal.displayBuffer().lines;
    if (row < 0 || static_cast<std::size_t>(row) >= lines.count())
        return {};
    std::string content = text(terminal, lines.read(static_cast<std::size_t>(row), scratch));
    trimBlanks(content);
    return content;
}

std::string dumpScreen(const Terminal& terminal) {
    std::string out;
    const Buffer& buffer = terminal.displayBuffer();
    for (int row = 0; row < buffer.rows(); ++row)
        out += rowText(terminal, buffer.yBase + row) + "\n";
    out.erase(out.find_last_not_of('\n') + 1);
    return out.empty() ? out : out + "\n";
}

std::string dumpScrollback(const Terminal& terminal) {
    std::string out;
    std::string logical;
    const CircularBufferLineList& lines = terminal.displayBuffer().lines;
    std::vector<Cell> scratch;
    const auto lastCol = static_cast<std::size_t>(terminal.displayBuffer().cols() - 1);
    for (std::size_t row = 0; row < lines.count(); ++row) {
        auto cells = lines.read(row, scratch);
        if (row + 1 < lines.count() && lines.isWrapped(row + 1)) {
            // A wide glyph that did not fit leaves a gap, which is no blank of the text.
            if (lines.cellAt(row, lastCol) == Cell{} && lines.cellAt(row + 1, 0).width() == 2)
                cells = cells.first(std::min(cells.size(), lastCol));
            logical += text(terminal, cells);
            continue;
        }
        logical += text(terminal, cells);
        trimBlanks(logical);
        out += logical + "\n";
        logical.clear();
    }
    out.erase(out.find_last_not_of('\n') + 1);
    return out.empty() ? out : out + "\n";
}

std::string dumpJson(const Terminal& terminal) {
    const Buffer& buffer = terminal.displayBuffer();
    std::string out = "{\"cols\":" + std::to_string(buffer.cols()) + ",\"rows\":" + std::to_string(buffer.rows()) +
        ",\"cursor\":{\"col\":" + std::to_string(buffer.x()) + ",\"row\":" + std::to_string(buffer.y()) +
        ",\"visible\":" + (terminal.modes.cursorHidden ? "false" : "true") +
        "},\"alternate\":" + (terminal.isDisplayBufferAlternate() ? "true" : "false") +
        ",\"title\":" + quoted(terminal.terminalTitle) + ",\"iconTitle\":" + quoted(terminal.iconTitle) +
        ",\"historyLines\":" + std::to_string(buffer.yBase) + ",\"lines\":[\n";
    std::vector<Cell> scratch;
    for (int row = 0; row < buffer.rows(); ++row)
        out += rowJson(terminal, buffer.screenIndex(row), scratch) + (row + 1 < buffer.rows() ? ",\n" : "\n");
    return out + "]}\n";
}

}
