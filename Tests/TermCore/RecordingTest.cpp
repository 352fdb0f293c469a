// Runs the cases of Recordings/*.txt. Their form stands in Recordings/README.md.
#include "TestHost.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <ostream>
#include <sstream>

namespace termcore::test {
namespace {

struct Case {
    std::string file;
    std::string name;
    TerminalOptions options = sized(10, 4);
    std::string input;
    std::vector<std::pair<std::string, std::string>> expectations; ///< kind and value, in order
};

void PrintTo(const Case& each, std::ostream* out) {
    *out << each.file << ": " << each.name;
}

std::string unescaped(std::string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            out += text[i];
            continue;
        }
        switch (text[++i]) {
        case 'e': out += '\x1b'; break;
        case 'n': out += '\n'; break;
        case 'r': out += '\r'; break;
        case 't': out += '\t'; break;
        case 'b': out += '\b'; break;
        case 'a': out += '\a'; break;
        case 'x':
            out += static_cast<char>(std::stoi(std::string(text.substr(i + 1, 2)), nullptr, 16));
            i += 2;
            break;
        default: out += text[i];
        }
    }
    return out;
}

std::string shown(std::string_view bytes) {
    std::string out;
    for (const char c : bytes) {
        if (c == '\x1b')
            out += "\\e";
        else if (static_cast<unsigned char>(c) < 0x20)
            out += c == '\n' ? "\\n" : c == '\r' ? "\\r" : "\\?";
        else
            out += c;
    }
    return out;
}

std::vector<Case> readCases() {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(TERMCORE_RECORDINGS)) {
        if (entry.path().extension() == ".txt")
            files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    std::vector<Case> cases;
    for (const auto& file : files) {
        std::ifstream in(file);
        for (std::string line; std::getline(in, line);) {
            if (line.empty() || line[0] == '#')
                continue;
            if (line[0] == '|') {
                cases.back().expectations.emplace_back("row", line.substr(1));
                continue;
            }
            const std::size_t space = line.find(' ');
            const std::string kind = line.substr(0, space);
            const std::string value = space == std::string::npos ? "" : line.substr(space + 1);
            if (kind == "test") {
                cases.push_back({file.stem().string(), value, sized(10, 4), {}, {}});
            } else if (kind == "size") {
                std::istringstream size(value);
                char cross = 0;
                size >> cases.back().options.cols >> cross >> cases.back().options.rows;
            } else if (kind == "option") {
                if (value.starts_with("term "))
                    cases.back().options.termName = value.substr(5);
                else if (value == "no-sixel")
                    cases.back().options.enableSixelReported = false;
                else if (value == "eol")
                    cases.back().options.convertEol = true;
                else
                    ADD_FAILURE() << "unknown option in " << file << ": " << value;
            } else if (kind == "in") {
                cases.back().input += unescaped(value);
            } else {
                cases.back().expectations.emplace_back(kind, value);
            }
        }
    }
    return cases;
}

/// "0 2-4 bold fg=index 1": the look of some cells of a row.
std::string look(const Terminal& terminal, int row, int col) {
    static constexpr std::pair<CharacterStyle, const char*> names[] = {{CharacterStyle::bold, "bold"},
        {CharacterStyle::dim, "dim"}, {CharacterStyle::italic, "italic"}, {CharacterStyle::underline, "underline"},
        {CharacterStyle::blink, "blink"}, {CharacterStyle::inverse, "inverse"},
        {CharacterStyle::invisible, "invisible"}, {CharacterStyle::crossedOut, "crossedOut"}};
    static constexpr const char* underlines[] = {"", "", "double", "curly", "dotted", "dashed"};
    const CharData cell = terminal.getCharData(col, row).value_or(CharData::Null);
    std::string out;
    const auto add = [&](const std::string& word) { out += (out.empty() ? "" : " ") + word; };
    for (const auto& [bit, name] : names) {
        if (contains(cell.attribute.style, bit))
            add(name);
    }
    if (cell.attribute.underlineStyle > UnderlineStyle::single)
        add(underlines[static_cast<int>(cell.attribute.underlineStyle)]);
    if (cell.attribute.fg != Attribute::Color::defaultColor())
        add("fg=" + tool::describe(cell.attribute.fg));
    if (cell.attribute.bg != Attribute::Color::defaultColor())
        add("bg=" + tool::describe(cell.attribute.bg));
    if (!cell.attribute.underlineColor.isAbsent())
        add("ul=" + tool::describe(cell.attribute.underlineColor));
    if (const std::string* link = cell.getPayload())
        add("link=" + *link);
    return out.empty() ? "plain" : out;
}

class Recording : public testing::TestWithParam<Case> {};

TEST_P(Recording, ShowsWhatIsWritten) {
    const Case& each = GetParam();
    TestHost host;
    Terminal terminal(&host, each.options);
    host.events.clear();
    terminal.feed(each.input);
    ASSERT_FALSE(each.expectations.empty());
    int row = 0;
    for (const auto& [kind, value] : each.expectations) {
        std::istringstream in(value);
        if (kind == "row") {
            std::string expected = value.substr(0, value.find_last_not_of(" |") + 1);
            EXPECT_EQ(tool::rowText(terminal, terminal.buffer().yBase + row), expected) << "row " << row;
            ++row;
        } else if (kind == "cursor") {
            const Position cursor = terminal.getCursorLocation();
            EXPECT_EQ(std::to_string(cursor.col) + "," + std::to_string(cursor.row), value) << "cursor";
        } else if (kind == "reply") {
            EXPECT_EQ(shown(host.replies), value) << "reply";
        } else if (kind == "event") {
            EXPECT_FALSE(host.events.empty()) << "missing: " << value;
            if (!host.events.empty()) {
                EXPECT_EQ(shown(host.events.front()), value) << "event";
                host.events.erase(host.events.begin());
            }
        } else if (kind == "no-more-events") {
            EXPECT_TRUE(host.events.empty()) << host.events.front();
        } else if (kind == "history") {
            EXPECT_EQ(std::to_string(terminal.buffer().yBase), value) << "lines of history";
        } else if (kind == "wrapped") {
            std::string wrapped;
            for (int i = 0; i < terminal.rows(); ++i) {
                if (terminal.buffer().lines.isWrapped(terminal.buffer().screenIndex(i)))
                    wrapped += (wrapped.empty() ? "" : ",") + std::to_string(i);
            }
            EXPECT_EQ(wrapped.empty() ? "none" : wrapped, value) << "wrapped rows";
        } else if (kind == "look") {
            int at = 0;
            int first = 0;
            int last = 0;
            char dash = 0;
            in >> at >> first >> dash >> last;
            std::string expected;
            std::getline(in >> std::ws, expected);
            for (int col = first; col <= last; ++col)
                EXPECT_EQ(look(terminal, at, col), expected) << "row " << at << ", column " << col;
        } else if (kind == "width") {
            int at = 0;
            int col = 0;
            int width = 0;
            in >> at >> col >> width;
            EXPECT_EQ(terminal.getCharData(col, at)->width, width) << "row " << at << ", column " << col;
        } else if (kind == "title") {
            EXPECT_EQ(terminal.terminalTitle, value);
        } else {
            ADD_FAILURE() << "unknown expectation: " << kind;
        }
    }
}

/// Where the input is cut between two feeds must not matter.
TEST_P(Recording, IsTheSameWhereverItIsCut) {
    const Case& each = GetParam();
    TestHost wholeHost;
    Terminal whole(&wholeHost, each.options);
    whole.feed(each.input);
    const auto firstAtom = TinyAtom::lastUsed;
    for (std::size_t cut = 0; cut <= each.input.size(); ++cut) {
        TinyAtom::lastUsed = firstAtom;
        TestHost host;
        Terminal terminal(&host, each.options);
        terminal.feed(std::string_view(each.input).substr(0, cut));
        terminal.feed(std::string_view(each.input).substr(cut));
        ASSERT_EQ(state(terminal), state(whole)) << "cut at " << cut;
        ASSERT_EQ(host.replies, wholeHost.replies) << "cut at " << cut;
        ASSERT_EQ(host.events, wholeHost.events) << "cut at " << cut;
    }
    TestHost host;
    Terminal terminal(&host, each.options);
    for (const char& byte : each.input)
        terminal.feed(std::string_view(&byte, 1));
    EXPECT_EQ(state(terminal), state(whole)) << "byte by byte";
}

std::string testName(const testing::TestParamInfo<Case>& info) {
    std::string name = info.param.file + "_" + info.param.name;
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    return name + "_" + std::to_string(info.index);
}

INSTANTIATE_TEST_SUITE_P(Recordings, Recording, testing::ValuesIn(readCases()), testName);

}
}
