// Real programs on the engine, compared with tmux's screen of the same program.
#include "ProgramScreens.h"

#include <fstream>
#include <gtest/gtest.h>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

namespace termcore::test {
namespace {

/// What is typed once the screen shows a text.
struct Step {
    const char* waitFor;
    const char* keys;
};

struct Program {
    const char* name;
    const char* needs;
    const char* command; ///< for bash, in the work folder
    std::vector<Step> steps;
    const char* finally;                    ///< what the last screen shows
    std::vector<const char*> rowsWith = {}; ///< only rows with one of these are the same each time
};

void PrintTo(const Program& program, std::ostream* out) {
    *out << program.name;
}

const Program programs[] = {
    {"bash", "bash", "PS1='$ ' bash --norc --noprofile -i",
        {{"$", "echo one two\x1b\x62new \x01\x0b\x19; echo $COLUMNS\r"},
            {"80", "for i in 1 2 3; do printf '%s\\t|' $i; done\r"}},
        "1       |2      |3      |$"},
    {"vim", "vim", "vim -u NONE -N +'set nomodeline number' text.txt",
        {{"line 1 ", "10Gdd5jyyp:s/line/строка/\r"}, {"строка", "Go中文 wide\x1b"}, {"中文 wide", "gg/line 7\r"}},
        "line 7"},
    {"less", "less", "less -N text.txt", {{"line 1 ", "  "}, {"line 50", "/line 9\r"}}, "line 90"},
    {"git", "git",
        "git -c color.ui=always -c core.pager=cat -C repository log --graph --stat --pretty=format:'%h %s'; sleep 100",
        {}, "first change"},
    {"mc", "mc", "cd files && mc --nosubshell --nomouse --skin=default .", {{"text.txt", "\x1b[B\x1b[B"}}, "10Quit"},
    // Loads, times and the processes themselves differ from one run to the next.
    {"top", "top", "top -d 100 -w 80", {}, "Tasks:", {"PID USER"}},
    {"htop", "htop", "htop -d 100", {}, "F10", {"F10Quit"}},
    {"tmux", "tmux",
        // A server of its own each time: one that is just ending would take the new session with it.
        "tmux -S inner.$$ -f /dev/null new-session \"PS1='> ' bash --norc --noprofile -i\" \\; set -g status off",
        {{">", "tmux split-window -h \"PS1='second> ' bash --norc --noprofile -i\"\r"},
            {"second>", "echo in the second\r"}},
        "│"},
};

/// The rows of a screen that are the same each time.
std::string stable(const std::string& screen, const Program& program) {
    if (program.rowsWith.empty())
        return screen;
    std::string kept;
    std::istringstream rows(screen);
    for (std::string row; std::getline(rows, row);) {
        for (const char* part : program.rowsWith)
            kept += row.find(part) != std::string::npos ? row + "\n" : "";
    }
    return kept;
}

class Programs : public testing::TestWithParam<Program> {
protected:
    void SetUp() override {
        if (!hasProgram(GetParam().needs))
            GTEST_SKIP() << GetParam().needs << " is not installed";
        for (const char* each : {"home/.config/mc", "files", "repository"})
            std::filesystem::create_directories(folder.path / each);
        // Without the hint of the day and the space left on the disk.
        std::ofstream(folder.path / "home/.config/mc/ini")
            << "[Layout]\nmessage_visible=false\nfree_space=false\nxterm_title=false\n";
        std::ofstream text(folder.path / "text.txt");
        for (int i = 1; i <= 200; ++i)
            text << "line " << i << " of a file, with some words\n";
        text.close();
        runShell("cd " + folder.path.string() +
            " && cp text.txt files/ && mkdir files/folder && echo x > files/other && touch -d 2024-01-01 files/*; "
            "cd repository && git init -q . 2>/dev/null && "
            "for i in first second third; do echo $i >> file; git add file; GIT_AUTHOR_DATE='2024-01-01 00:00:00' "
            "GIT_COMMITTER_DATE='2024-01-01 00:00:00' git -c user.name=n -c user.email=e commit -qm \"$i change\"; "
            "done");
    }
    void TearDown() override {
        runShell(
            "cd " + folder.path.string() + " && for each in inner.*; do tmux -S $each kill-server 2>/dev/null; done");
    }
    std::string command() const {
        return "unset TMUX; cd " + folder.path.string() +
            " && export LANG=C.UTF-8 LC_ALL=C.UTF-8 HOME=" + folder.path.string() + "/home; " + GetParam().command;
    }

    const WorkFolder folder;
};

/// The last screen after all steps.
std::string play(ProgramScreen& screen, const Program& program) {
    for (const Step& step : program.steps) {
        const std::string shown = screen.settled(step.waitFor);
        EXPECT_NE(shown.find(step.waitFor), std::string::npos) << shown;
        screen.type(step.keys);
    }
    return screen.settled(program.finally);
}

TEST_P(Programs, LookAsTheyShould) {
    const Program& program = GetParam();
    std::string ours;
    {
        EngineScreen engine(command());
        ours = play(engine, program);
    }
    EXPECT_NE(ours.find(program.finally), std::string::npos) << ours;
    if (!TmuxScreen::isInstalled())
        return;
    std::filesystem::remove(folder.path / ".text.txt.swp");
    TmuxScreen peer(command(), folder.path);
    EXPECT_NE(stable(ours, program), "");
    EXPECT_EQ(stable(ours, program), stable(play(peer, program), program));
}

INSTANTIATE_TEST_SUITE_P(
    Real, Programs, testing::ValuesIn(programs), [](const auto& each) { return std::string(each.param.name); });

}
}
