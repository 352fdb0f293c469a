#include "Terminal/WindowCommands.h"

#include "Terminal/Terminal.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

namespace termcore::commands {
namespace {

using Parameters = std::span<const std::int64_t>;
using Command = WindowManipulationCommand;

struct FixedCommand {
    std::int64_t operation;
    std::int64_t argument; ///< -1: the operation stands alone
    Command command;
};

const FixedCommand fixedCommands[] = {
    {1, -1, window::DeiconifyWindow{}},
    {2, -1, window::IconifyWindow{}},
    {5, -1, window::BringToFront{}},
    {6, -1, window::SendToBack{}},
    {7, -1, window::RefreshWindow{}},
    {9, 0, window::RestoreMaximizedWindow{}},
    {9, 1, window::MaximizeWindow{}},
    {9, 2, window::MaximizeWindowVertically{}},
    {9, 3, window::MaximizeWindowHorizontally{}},
    {10, 0, window::UndoFullScreen{}},
    {10, 1, window::SwitchToFullScreen{}},
    {10, 2, window::ToggleFullScreen{}},
    {14, -1, window::ReportTextAreaPixelDimension{}},
    {14, 2, window::ReportTerminalWindowPixelDimension{}},
    {15, -1, window::ReportSizeOfScreenInPixels{}},
    {16, -1, window::ReportCellSizeInPixels{}},
    {18, -1, window::ReportTextAreaCharacters{}},
    {19, -1, window::ReportScreenSizeCharacters{}},
    {20, -1, window::ReportIconLabel{}},
    {21, -1, window::ReportWindowTitle{}},
};

std::optional<Command> parse(const ControlSequence& sequence) {
    const Parameters parameters = sequence.parameters;
    if (parameters.size() == 3) {
        const int first = sequence.number(1);
        const int second = sequence.number(2);
        switch (parameters[0]) {
        case 3: return window::MoveWindowTo{first, second};
        case 4: return window::ResizeWindowTo{second, first};
        case 8: return window::ResizeTo{second, first};
        default: return std::nullopt;
        }
    }
    if (parameters.size() > 2)
        return std::nullopt;
    const std::int64_t argument = sequence.at(1, -1);
    for (const FixedCommand& each : fixedCommands) {
        if (each.operation == parameters[0] && each.argument == argument)
            return each.command;
    }
    return std::nullopt;
}

/// Which of the two titles 22 and 23 mean: both with 0 or "0;0", the icon's with 1, the window's with 2.
struct TitleSelection {
    bool title = false;
    bool icon = false;
};

TitleSelection selectTitles(Parameters parameters) {
    const bool isBoth = (parameters.size() == 2 && parameters[1] == 0) ||
        (parameters.size() == 3 && parameters[1] == 0 && parameters[2] == 0);
    if (isBoth)
        return {true, true};
    if (parameters.size() != 2)
        return {};
    return {parameters[1] == 2, parameters[1] == 1};
}

void pushTitles(Terminal& terminal, TitleSelection which) {
    if (which.title)
        terminal.terminalTitleStack.push_back(terminal.terminalTitle);
    if (which.icon)
        terminal.terminalIconStack.push_back(terminal.iconTitle);
}

std::optional<std::string> pop(std::vector<std::string>& stack) {
    if (stack.empty())
        return std::nullopt;
    std::string last = std::move(stack.back());
    stack.pop_back();
    return last;
}

void popTitles(Terminal& terminal, TitleSelection which) {
    if (which.title) {
        if (const auto title = pop(terminal.terminalTitleStack))
            terminal.setTitle(*title);
    }
    if (which.icon) {
        if (const auto title = pop(terminal.terminalIconStack))
            terminal.setIconTitle(*title);
    }
}

/// The reply to a report that the host left to the terminal; empty for commands that ask nothing.
struct Answer {
    Terminal& terminal;

    std::string size(std::string_view kind, int height, int width) const {
        return std::string(terminal.cc.CSI()) + std::string(kind) + ";" + std::to_string(height) + ";" +
            std::to_string(width) + "t";
    }
    std::string pixels(std::string_view kind, bool ofCell) const {
        constexpr TerminalDelegate::CellSize fallback{10, 16};
        const auto cell = terminal.delegate()->cellSizeInPixels(terminal).value_or(fallback);
        return size(kind, cell.height * (ofCell ? 1 : terminal.rows()), cell.width * (ofCell ? 1 : terminal.cols()));
    }
    std::string title(char kind, const std::string& text) const {
        return std::string(terminal.cc.OSC()) + kind + text + std::string(terminal.cc.ST());
    }

    std::string operator()(const window::ReportTextAreaPixelDimension&) const { return pixels("4", false); }
    std::string operator()(const window::ReportTerminalWindowPixelDimension&) const { return pixels("4", false); }
    std::string operator()(const window::ReportSizeOfScreenInPixels&) const { return pixels("5", false); }
    std::string operator()(const window::ReportCellSizeInPixels&) const { return pixels("6", true); }
    std::string operator()(const window::ReportTextAreaCharacters&) const {
        return size("8", terminal.rows(), terminal.cols());
    }
    std::string operator()(const window::ReportScreenSizeCharacters&) const {
        return size("9", terminal.rows(), terminal.cols());
    }
    std::string operator()(const window::ReportIconLabel&) const { return title('L', terminal.iconTitle); }
    std::string operator()(const window::ReportWindowTitle&) const { return title('l', terminal.terminalTitle); }
    std::string operator()(const auto&) const { return {}; }
};

void changeTitleModes(Terminal& terminal, const ControlSequence& sequence, bool on) {
    static constexpr bool TerminalModes::*flags[] = {&TerminalModes::xtermTitleSetHex,
        &TerminalModes::xtermTitleQueryHex, &TerminalModes::xtermTitleSetUtf, &TerminalModes::xtermTitleQueryUtf};
    for (const std::int64_t number : sequence.parameters) {
        if (number < static_cast<std::int64_t>(std::size(flags)))
            terminal.modes.*flags[number] = on;
        else
            terminal.log("Unhandled title mode");
    }
}

}

void windowOptions(Terminal& terminal, const ControlSequence& sequence) {
    if (terminal.delegate() == nullptr)
        return;
    const TitleSelection titles = selectTitles(sequence.parameters);
    if (sequence.at(0) == 22) {
        pushTitles(terminal, titles);
    } else if (sequence.at(0) == 23) {
        popTitles(terminal, titles);
    } else if (const auto command = parse(sequence)) {
        auto reply = terminal.delegate()->windowCommand(terminal, *command);
        if (!reply)
            reply = std::visit(Answer{terminal}, *command);
        if (!reply->empty())
            terminal.sendResponse(*reply);
    } else {
        terminal.log("Unhandled window command");
    }
}

void setTitleModes(Terminal& terminal, const ControlSequence& sequence) {
    changeTitleModes(terminal, sequence, true);
}

void resetTitleModes(Terminal& terminal, const ControlSequence& sequence) {
    changeTitleModes(terminal, sequence, false);
}

}
