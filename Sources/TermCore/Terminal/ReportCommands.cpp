#include "Terminal/ReportCommands.h"

#include "Terminal/Terminal.h"

#include <algorithm>
#include <string>

namespace termcore::commands {
namespace {

struct FixedReport {
    std::int64_t request;
    std::string_view reply; ///< behind CSI
};

// DEC STD 070 and xterm: printer, user-defined keys, keyboard, locator, macro space, data integrity, sessions.
constexpr FixedReport decReports[] = {
    {15, "?10n"},
    {25, "?21n"},
    {26, "?27;1;0;0n"},
    {55, "?53n"},
    {56, "?57;1n"},
    {62, "0*{"},
    {75, "?70n"},
    {85, "?83n"},
};

struct TerminalClass {
    std::string_view namePrefix;
    std::string_view beforeSixel;
    std::string_view afterSixel;
    bool canReportSixel;
};

constexpr TerminalClass terminalClasses[] = {
    {"xterm", "?65", ";1;2;6;21;22;17;28c", true},
    {"screen", "?1;2c", "", false},
    {"rxvt-unicode", "?1;2c", "", false},
    {"linux", "?6c", "", false},
};

std::string cursorReport(const Terminal& terminal) {
    const Buffer& buffer = terminal.buffer();
    int row = buffer.y() + 1;
    int col = buffer.x() + 1;
    if (terminal.modes.originMode) {
        row -= buffer.scrollTop();
        col -= buffer.leftLimit(); // margins count in margin mode only, as when the cursor is set
    }
    return std::to_string(std::max(row, 1)) + ";" + std::to_string(std::max(col, 1));
}

void sendControl(Terminal& terminal, std::string_view tail) {
    terminal.sendResponse(std::string(terminal.cc.CSI()) + std::string(tail));
}

}

void sendDeviceAttributes(Terminal& terminal, const ControlSequence& sequence) {
    if (sequence.at(0) > 0) {
        terminal.log("Unhandled device attributes request");
        return;
    }
    if (sequence.collect == ">") {
        sendControl(terminal, ">65;20;1c");
        return;
    }
    if (!sequence.collect.empty())
        return;
    for (const TerminalClass& each : terminalClasses) {
        if (!terminal.options.termName.starts_with(each.namePrefix))
            continue;
        std::string reply(each.beforeSixel);
        if (each.canReportSixel && terminal.options.enableSixelReported)
            reply += ";4";
        sendControl(terminal, reply + std::string(each.afterSixel));
        return;
    }
}

void deviceStatus(Terminal& terminal, const ControlSequence& sequence) {
    const std::int64_t request = sequence.at(0);
    if (sequence.collect.empty()) {
        if (request == 5)
            sendControl(terminal, "0n");
        else if (request == 6)
            sendControl(terminal, cursorReport(terminal) + "R");
        return;
    }
    if (sequence.collect != "?")
        return;
    if (request == 6) {
        sendControl(terminal, "?" + cursorReport(terminal) + ";1R");
    } else if (request == 63) {
        terminal.sendResponse(
            std::string(terminal.cc.DCS()) + std::to_string(sequence.at(1)) + "!~0000" + std::string(terminal.cc.ST()));
    } else {
        for (const FixedReport& report : decReports) {
            if (report.request == request)
                sendControl(terminal, report.reply);
        }
    }
}

}
