// The screens of vttest. What tmux carries out is compared with its screen; where it does not, the screen lies in
// VttestScreens, checked against what vttest says on it.
#include "ProgramScreens.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace termcore::test {
namespace {

struct Test {
    const char* name;
    std::vector<const char*> menus; ///< on the way to the menu
    std::vector<const char*> items; ///< of that menu, one after the other
    bool hasPeer = true;            ///< tmux shows the same menu and carries out most of it
};

void PrintTo(const Test& test, std::ostream* out) {
    *out << test.name;
}

// Left out: keyboards, printers and VT52; 96-character sets and single shifts, protected areas, and what REP repeats
// after a control function, which the engine takes its own way.
const Test tests[] = {
    {"CursorMovements", {}, {"1"}},
    {"ScreenFeatures", {}, {"2"}},
    {"CharacterSets", {"3"}, {"8"}, false},
    {"DoubleSizedCharacters", {}, {"4"}},
    {"Reports", {"6"}, {"1", "2", "3", "4", "5", "6", "7"}},
    {"Vt102Features", {}, {"8"}},
    {"KnownBugs", {"9"}, {"1", "2", "3", "4", "5", "6", "7", "8", "9"}},
    {"Vt220Screen", {"11", "1", "2"}, {"2", "3"}, false},
    {"Vt220Controls", {"11", "1"}, {"3", "6"}, false},
    {"Rectangles", {"11", "3", "6"}, {"8", "9", "10"}, false},
    {"RectanglesInMargins", {"11", "3", "6"}, {"1", "2", "3", "4", "8", "9", "10"}, false},
    {"Ecma48Cursor", {"11", "5"}, {"1", "2", "3", "4", "5", "6", "7", "8", "9"}},
    {"Ecma48Scrolling", {"11", "7"}, {"3", "6"}},
};

bool isMenu(const std::string& screen) {
    return screen.find("Enter choice number") != std::string::npos;
}

/// What is shown after `keys`. A screen that asks for nothing may still be at work.
std::string shownAfter(ProgramScreen& screen, std::string_view before, std::string_view keys) {
    screen.type(keys);
    int polls = 0;
    return screen.settled([&](const std::string& now) {
        ++polls;
        const bool asks = isMenu(now) || now.find("RETURN") != std::string::npos;
        return (asks && now != before) || polls > 40;
    });
}

struct Shown {
    std::string name;
    std::string text;
};

std::vector<Shown> walk(ProgramScreen& screen, const Test& test) {
    std::vector<Shown> screens;
    std::string shown = screen.settled("Enter choice number");
    for (const char* choice : test.menus)
        shown = shownAfter(screen, shown, std::string(choice) + "\r");
    for (const char* item : test.items) {
        constexpr int most = 60;
        shown = shownAfter(screen, shown, std::string(item) + "\r");
        for (int i = 1; !isMenu(shown) && i <= most; ++i) {
            screens.push_back({std::string(test.name) + "-" + item + "-" + std::to_string(i), shown + "\n"});
            shown = shownAfter(screen, shown, "\r");
        }
    }
    return screens;
}

/// The screen that was kept for a test.
std::optional<std::string> golden(const std::string& name) {
    std::ifstream in(std::string(TERMCORE_VTTEST_SCREENS) + "/" + name + ".txt");
    if (!in)
        return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(in), {});
}

class Vttest : public testing::TestWithParam<Test> {};

TEST_P(Vttest, ShowsWhatItShould) {
    if (!hasProgram("vttest") || !TmuxScreen::isInstalled())
        GTEST_SKIP() << "vttest or tmux is not installed";
    const WorkFolder folder;
    const std::string command = "cd " + folder.path.string() + " && LC_ALL=C.UTF-8 exec vttest 24x80.132";
    EngineScreen engine(command);
    const std::vector<Shown> ours = walk(engine, GetParam());
    EXPECT_FALSE(ours.empty());
    std::vector<Shown> theirs;
    if (GetParam().hasPeer) {
        TmuxScreen peer(command, folder.path);
        theirs = walk(peer, GetParam());
        EXPECT_EQ(ours.size(), theirs.size());
    }
    for (std::size_t i = 0; i < ours.size(); ++i) {
        const auto& [name, text] = ours[i];
        std::optional<std::string> expected = golden(name);
        if (!expected && i < theirs.size() && theirs[i].name == name)
            expected = theirs[i].text;
        EXPECT_EQ(text, expected.value_or("")) << name;
        if (const char* keep = std::getenv("TERMCORE_KEEP_SCREENS"))
            std::ofstream(std::string(keep) + "/" + name + ".txt") << text;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Menus, Vttest, testing::ValuesIn(tests), [](const auto& each) { return std::string(each.param.name); });

}
}
