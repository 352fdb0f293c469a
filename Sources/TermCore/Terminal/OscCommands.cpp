#include "Terminal/OscCommands.h"

#include "Parser/EscapeSequenceParser.h"
#include "Terminal/Terminal.h"
#include "Unicode/Utf8.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <vector>

namespace termcore::osc {
namespace {

using Handler = bool (*)(Terminal& terminal, std::string_view data);

std::span<const std::uint8_t> bytesOf(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> items;
    while (true) {
        const std::size_t end = text.find(separator);
        items.push_back(text.substr(0, end));
        if (end == std::string_view::npos)
            return items;
        text.remove_prefix(end + 1);
    }
}

bool isAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

std::string_view decoded(std::string_view data) {
    return utf8::isValid(data) ? data : std::string_view();
}

bool setBothTitles(Terminal& terminal, std::string_view data) {
    terminal.setTitle(decoded(data));
    return true;
}

bool setIconTitle(Terminal& terminal, std::string_view data) {
    terminal.setIconTitle(decoded(data));
    return true;
}

// -- colours ------------------------------------------------------------------------------------------------------------

void reply(Terminal& terminal, const std::string& content) {
    terminal.sendResponse(std::string(terminal.cc.OSC()) + content + std::string(terminal.cc.ST()));
}

bool changeOrQueryColorIndex(Terminal& terminal, std::string_view data) {
    while (true) {
        const std::size_t semicolon = data.find(';');
        if (semicolon == std::string_view::npos)
            return true;
        const std::int64_t index = EscapeSequenceParser::parseInt(bytesOf(data.substr(0, semicolon)));
        if (index > 255)
            return true;
        data.remove_prefix(semicolon + 1);
        const std::string_view spec = data.substr(0, data.find(';'));
        data.remove_prefix(std::min(spec.size() + 1, data.size()));
        Color& entry = terminal.palette.ansiColors[static_cast<std::size_t>(index)];
        if (spec == "?") {
            reply(terminal, "4;" + std::to_string(index) + ";" + entry.formatAsXcolor());
        } else if (const auto color = Color::parseColor(spec)) {
            entry = *color;
            if (terminal.delegate() != nullptr)
                terminal.delegate()->colorChanged(terminal, static_cast<int>(index));
        }
    }
}

Color queriedColor(Terminal& terminal, int index) {
    if (index == 2 && terminal.cursorColor)
        return *terminal.cursorColor;
    const auto [foreground, background] = terminal.delegate() != nullptr
        ? terminal.delegate()->getColors(terminal)
        : std::pair(terminal.foregroundColor, terminal.backgroundColor);
    return index == 1 ? background : foreground;
}

bool setColors(Terminal& terminal, std::string_view data, int startAt) {
    int index = startAt;
    for (const std::string_view item : split(data, ';')) {
        if (index > 2)
            break;
        if (item == "?") {
            reply(terminal, std::to_string(10 + index) + ";" + queriedColor(terminal, index).formatAsXcolor());
        } else if (const auto color = Color::parseColor(item)) {
            switch (index) {
            case 0: terminal.setForegroundColor(*color); break;
            case 1: terminal.setBackgroundColor(*color); break;
            default: terminal.setCursorColor(*color); break;
            }
        }
        ++index;
    }
    return true;
}

template <int startAt>
bool setColorsFrom(Terminal& terminal, std::string_view data) {
    return setColors(terminal, data, startAt);
}

bool resetColor(Terminal& terminal, std::string_view data) {
    if (data.empty()) {
        terminal.resetAllColors();
        return true;
    }
    for (const std::string_view item : split(data, ';')) {
        std::int64_t index = 0;
        const auto [end, error] = std::from_chars(item.data(), item.data() + item.size(), index);
        if (error == std::errc::result_out_of_range)
            continue;
        if (error != std::errc() || end != item.data() + item.size())
            index = 0;
        if (index < 0 || index > 255)
            continue;
        const auto at = static_cast<std::size_t>(index);
        terminal.palette.ansiColors[at] = terminal.palette.defaultAnsiColors[at];
        if (terminal.delegate() != nullptr)
            terminal.delegate()->colorChanged(terminal, static_cast<int>(index));
    }
    return true;
}

bool resetCursorColor(Terminal& terminal, std::string_view) {
    terminal.setCursorColor(std::nullopt);
    return true;
}

// -- the host's place ---------------------------------------------------------------------------------------------------

bool isTrusted(Terminal& terminal) {
    return terminal.delegate() == nullptr || terminal.delegate()->isProcessTrusted(terminal);
}

bool setCurrentDocument(Terminal& terminal, std::string_view data) {
    if (!isTrusted(terminal) || !utf8::isValid(data))
        return true;
    terminal.hostCurrentDocument = std::string(data);
    if (terminal.delegate() != nullptr)
        terminal.delegate()->hostCurrentDocumentUpdated(terminal);
    return true;
}

bool setCurrentDirectory(Terminal& terminal, std::string_view data) {
    if (!isTrusted(terminal) || !utf8::isValid(data))
        return true;
    terminal.hostCurrentDirectory = std::string(data);
    if (terminal.delegate() != nullptr)
        terminal.delegate()->hostCurrentDirectoryUpdated(terminal);
    return true;
}

// -- hyperlinks -----------------------------------------------------------------------------------------------------------

void markCells(Terminal& terminal, const Terminal::HyperLink& link) {
    const auto atom = TinyAtom::lookup(link.payload);
    if (!atom)
        return;
    terminal.countPayload(*atom);
    Buffer& buffer = terminal.buffer();
    const int lastRow = buffer.y() + buffer.yBase;
    for (int row = link.start.row; row <= lastRow; ++row) {
        if (static_cast<std::size_t>(row) >= buffer.lines.count())
            break;
        const int first = row == link.start.row ? std::min(link.start.col, terminal.cols() - 1) : 0;
        const int last = row == lastRow ? std::min(buffer.x(), terminal.cols() - 1) : buffer.rightLimit();
        if (first >= last)
            continue;
        BufferLine& line = buffer.lines.edit(static_cast<std::size_t>(row));
        for (int col = first; col <= last; ++col) {
            Cell cell = line[col];
            cell.style = terminal.styles.idOf(terminal.styles.attributeOf(cell.style), *atom);
            line.set(col, cell);
        }
        if (row < buffer.yBase)
            buffer.lines.freeze(static_cast<std::size_t>(row));
    }
}

bool hyperlink(Terminal& terminal, std::string_view data) {
    if (data != ";") {
        const Buffer& buffer = terminal.buffer();
        terminal.hyperLinkTracking = Terminal::HyperLink{
            {buffer.x(), buffer.y() + buffer.yBase}, isAscii(data) ? std::string(data) : std::string()};
        return true;
    }
    if (const auto link = std::exchange(terminal.hyperLinkTracking, std::nullopt))
        markCells(terminal, *link);
    return true;
}

// -- the host's services --------------------------------------------------------------------------------------------------

bool progress(Terminal& terminal, std::string_view data) {
    const auto report = parseProgressReport(data);
    if (report && terminal.delegate() != nullptr)
        terminal.delegate()->progressReport(terminal, *report);
    return report.has_value();
}

bool clipboard(Terminal& terminal, std::string_view data) {
    if (!data.starts_with("c;"))
        return true;
    const auto content = decodeBase64(data.substr(2));
    if (content && terminal.delegate() != nullptr)
        terminal.delegate()->clipboardCopy(terminal, bytesOf(*content));
    return true;
}

bool notification(Terminal& terminal, std::string_view data) {
    const auto items = split(decoded(data), ';');
    if (items.size() <= 2 || items[0] != "notify" || terminal.delegate() == nullptr)
        return true;
    const std::string_view body(items[2].data(), static_cast<std::size_t>(items.back().end() - items[2].begin()));
    terminal.delegate()->notify(terminal, items[1], body);
    return true;
}

std::map<std::string_view, std::string_view> parseKeyValues(std::string_view text) {
    std::map<std::string_view, std::string_view> values;
    for (const std::string_view pair : split(text, ';')) {
        const std::size_t equals = pair.find('=');
        if (equals != std::string_view::npos)
            values[pair.substr(0, equals)] = pair.substr(equals + 1);
    }
    return values;
}

bool inlineContent(Terminal& terminal, std::string_view data) {
    const std::size_t equals = data.find('=');
    if (equals == std::string_view::npos || terminal.delegate() == nullptr)
        return true;
    if (data.substr(0, equals) != "File") {
        terminal.delegate()->iTermContent(terminal, bytesOf(data));
        return true;
    }
    const std::size_t colon = data.find(':', equals);
    if (colon == std::string_view::npos)
        return true;
    const auto values = parseKeyValues(data.substr(equals + 1, colon - equals - 1));
    const auto valueOf = [&](std::string_view key) {
        const auto found = values.find(key);
        return found == values.end() ? std::optional<std::string_view>() : found->second;
    };
    if (valueOf("inline") != "1") {
        terminal.delegate()->iTermContent(terminal, bytesOf(data));
        return true;
    }
    if (const auto content = decodeBase64(data.substr(colon + 1)))
        terminal.delegate()->createImage(terminal, bytesOf(*content), parseDimension(valueOf("width").value_or("auto")),
            parseDimension(valueOf("height").value_or("auto")), valueOf("preserveAspectRatio").value_or("1") == "1");
    return true;
}

struct Command {
    std::int64_t code;
    std::string_view name;
    Handler handler;
};

constexpr Command commands[] = {
    {0, "window and icon title", setBothTitles},
    {1, "icon title", setIconTitle},
    {2, "window title", setBothTitles},
    {4, "palette", changeOrQueryColorIndex},
    {6, "current document", setCurrentDocument},
    {7, "current directory", setCurrentDirectory},
    {8, "hyperlink", hyperlink},
    {9, "progress", progress},
    {10, "foreground", setColorsFrom<0>},
    {11, "background", setColorsFrom<1>},
    {12, "cursor colour", setColorsFrom<2>},
    {52, "clipboard", clipboard},
    {104, "reset palette", resetColor},
    {112, "reset cursor colour", resetCursorColor},
    {777, "notification", notification},
    {1337, "inline content", inlineContent},
};

}

bool dispatch(Terminal& terminal, std::int64_t code, std::span<const std::uint8_t> data) {
    const std::string_view text(reinterpret_cast<const char*>(data.data()), data.size());
    for (const Command& command : commands) {
        if (command.code == code)
            return command.handler(terminal, text);
    }
    return false;
}

std::optional<ProgressReport> parseProgressReport(std::string_view data) {
    if (!isAscii(data))
        return std::nullopt;
    const auto items = split(data, ';');
    if (items.size() < 2 || items[0] != "4" || items[1].size() != 1 || items[1][0] < '0' || items[1][0] > '4')
        return std::nullopt;
    ProgressReport report;
    report.state = static_cast<ProgressReportState>(items[1][0] - '0');
    if (items.size() > 2 && !items[2].empty()) {
        std::int64_t value = 0;
        const auto [end, error] = std::from_chars(items[2].data(), items[2].data() + items[2].size(), value);
        if (error != std::errc() || end != items[2].data() + items[2].size())
            return std::nullopt;
        report.progress = static_cast<int>(std::clamp<std::int64_t>(value, 0, 100));
    }
    if (report.state == ProgressReportState::remove)
        report.progress.reset();
    return report;
}

ImageSizeRequest parseDimension(std::string_view text) {
    using Unit = ImageSizeRequest::Unit;
    ImageSizeRequest request{Unit::cells, 0};
    if (text.ends_with('%')) {
        request.unit = Unit::percent;
        text.remove_suffix(1);
    } else if (text.ends_with("px")) {
        request.unit = Unit::pixels;
        text.remove_suffix(2);
    }
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), request.amount);
    if (error != std::errc() || end != text.data() + text.size())
        return {};
    return request;
}

std::string_view parseHyperlinkPayload(std::string_view payload) {
    const std::size_t semicolon = payload.find(';');
    return semicolon == std::string_view::npos ? std::string_view() : payload.substr(semicolon + 1);
}

std::optional<std::string> decodeBase64(std::string_view text) {
    const auto valueOf = [](char c) -> int {
        if (c >= 'A' && c <= 'Z')
            return c - 'A';
        if (c >= 'a' && c <= 'z')
            return c - 'a' + 26;
        if (c >= '0' && c <= '9')
            return c - '0' + 52;
        return c == '+' ? 62 : c == '/' ? 63 : -1;
    };
    if (text.size() % 4 != 0)
        return std::nullopt;
    std::size_t padding = 0;
    while (padding < 2 && padding < text.size() && text[text.size() - 1 - padding] == '=')
        ++padding;
    text.remove_suffix(padding);
    std::string out;
    out.reserve(text.size() / 4 * 3 + 2);
    std::uint32_t bits = 0;
    int count = 0;
    for (const char c : text) {
        const int value = valueOf(c);
        if (value < 0)
            return std::nullopt;
        bits = (bits << 6 | static_cast<std::uint32_t>(value)) & 0xFFFFFF;
        count += 6;
        if (count >= 8) {
            count -= 8;
            out += static_cast<char>(bits >> count & 0xFF);
        }
    }
    return out;
}

}
