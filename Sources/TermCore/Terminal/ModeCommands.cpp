#include "Terminal/ModeCommands.h"

#include "Terminal/CursorCommands.h"
#include "Terminal/Terminal.h"

#include <cstdint>
#include <string>

namespace termcore::commands {
namespace {

using Modes = TerminalModes;
using Action = void (*)(Terminal&, bool on);
using Query = bool (*)(const Terminal&);

/// What DECRQM answers (DEC STD 070).
enum class State : std::uint8_t { unknown, set, reset, permanentlySet, permanentlyReset, asked };

// In the order of the table's columns, not of sizes.
struct Mode {   // NOLINT(clang-analyzer-optin.performance.Padding)
    bool isDec; ///< CSI ? ... rather than CSI ...
    int number;
    std::string_view name;
    Action change; ///< null: can't be changed here
    State state;   ///< `asked`: as `isSet` says
    Query isSet = nullptr;
};

template <bool TerminalModes::*field>
void assign(Terminal& terminal, bool on) {
    terminal.modes.*field = on;
}

template <bool TerminalModes::*field>
bool isOn(const Terminal& terminal) {
    return terminal.modes.*field;
}

template <MouseMode mode>
void changeMouseMode(Terminal& terminal, bool on) {
    terminal.setMouseMode(on ? mode : MouseMode::off);
}

template <MouseMode mode>
bool isMouseMode(const Terminal& terminal) {
    return terminal.modes.mouseMode == mode;
}

template <MouseProtocolEncoding protocol>
void changeMouseProtocol(Terminal& terminal, bool on) {
    terminal.modes.mouseProtocol = on ? protocol : MouseProtocolEncoding::x10;
    if (!on)
        terminal.setMouseMode(MouseMode::off);
}

template <MouseProtocolEncoding protocol>
bool isMouseProtocol(const Terminal& terminal) {
    return terminal.modes.mouseProtocol == protocol;
}

void nothing(Terminal&, bool) {}

void changeInsertMode(Terminal& terminal, bool on) {
    terminal.setInsertMode(on);
}

void changeWraparound(Terminal& terminal, bool on) {
    terminal.setWraparound(on);
}

void changeMarginMode(Terminal& terminal, bool on) {
    terminal.setMarginMode(on);
}

void changeReverseWraparound(Terminal& terminal, bool on) {
    if (!on || terminal.modes.wraparound)
        terminal.modes.reverseWraparound = on;
}

/// DECANM: back to ASCII.
void resetCharsets(Terminal& terminal, bool on) {
    if (!on)
        return;
    if (terminal.charsets.level() == 0) {
        for (int slot = 0; slot < 4; ++slot)
            terminal.charsets.setgCharset(slot, nullptr);
    } else {
        terminal.charsets.setgCharset(0, nullptr);
    }
}

void changeColumnMode(Terminal& terminal, bool on) {
    if (!terminal.modes.allow80To132)
        return;
    const auto tellHost = [&] {
        if (terminal.delegate() != nullptr)
            terminal.delegate()->sizeChanged(terminal);
    };
    if (on) {
        terminal.changeColumns(132);
        tellHost();
    } else {
        // Going back, the host hears of the size before the screen starts over.
        terminal.resize(80, terminal.rows());
        tellHost();
        terminal.changeColumns(80);
    }
}

Attribute invertedAttribute() {
    Attribute inverted;
    inverted.fg = inverted.bg = Attribute::Color::defaultInvertedColor();
    return inverted;
}

void changeScreenMode(Terminal& terminal, bool on) {
    terminal.setCurAttr(on ? invertedAttribute() : Attribute::empty);
}

void changeCursorVisibility(Terminal& terminal, bool on) {
    if (on)
        terminal.showCursor();
    else
        terminal.hideCursor();
}

void bufferActivated(Terminal& terminal) {
    terminal.refresh(0, terminal.rows() - 1);
    terminal.showCursor();
    if (terminal.delegate() != nullptr)
        terminal.delegate()->bufferActivated(terminal);
}

/// Modes 47 and 1047: leaving the alternate screen clears it.
void changeBuffer(Terminal& terminal, bool on) {
    if (on)
        terminal.activateAltBuffer();
    else
        terminal.activateNormalBuffer(true);
    bufferActivated(terminal);
}

void changeSavedCursor(Terminal& terminal, bool on) {
    if (on)
        saveCursor(terminal, {});
    else
        restoreCursor(terminal, {});
}

void changeBufferAndCursor(Terminal& terminal, bool on) {
    if (on) {
        saveCursor(terminal, {});
        terminal.activateAltBuffer();
    } else {
        terminal.activateNormalBuffer(true);
        restoreCursor(terminal, {});
    }
    bufferActivated(terminal);
}

void changeSynchronizedOutput(Terminal& terminal, bool on) {
    if (on)
        terminal.beginSynchronizedOutput();
    else
        terminal.endSynchronizedOutput();
}

constexpr bool ansi = false;
constexpr bool dec = true;

// ECMA-48 modes, then DEC's private ones with xterm's.
constexpr Mode modes[] = {
    {ansi, 1, "GATM", nullptr, State::permanentlyReset},
    {ansi, 2, "KAM", nothing, State::reset},
    {ansi, 3, "CRM", nullptr, State::reset},
    {ansi, 4, "IRM", changeInsertMode, State::asked, isOn<&Modes::insertMode>},
    {ansi, 5, "SRTM", nullptr, State::permanentlyReset},
    {ansi, 7, "VEM", nullptr, State::permanentlyReset},
    {ansi, 10, "HEM", nullptr, State::permanentlyReset},
    {ansi, 11, "PUM", nullptr, State::permanentlyReset},
    {ansi, 12, "SRM", nullptr, State::set},
    {ansi, 13, "FEAM", nullptr, State::permanentlyReset},
    {ansi, 14, "FETM", nullptr, State::permanentlyReset},
    {ansi, 15, "MATM", nullptr, State::permanentlyReset},
    {ansi, 16, "TTM", nullptr, State::permanentlyReset},
    {ansi, 17, "SATM", nullptr, State::permanentlyReset},
    {ansi, 18, "TSM", nullptr, State::permanentlyReset},
    {ansi, 19, "EBM", nullptr, State::permanentlyReset},
    {ansi, 20, "LNM", assign<&Modes::lineFeedMode>, State::asked, isOn<&Modes::lineFeedMode>},

    {dec, 1, "DECCKM", assign<&Modes::applicationCursor>, State::asked, isOn<&Modes::applicationCursor>},
    {dec, 2, "DECANM", resetCharsets, State::set},
    {dec, 3, "DECCOLM", changeColumnMode, State::asked, [](const Terminal& t) { return t.cols() == 132; }},
    {dec, 4, "DECSCLM", assign<&Modes::smoothScroll>, State::asked, isOn<&Modes::smoothScroll>},
    {dec, 5, "DECSCNM", changeScreenMode, State::asked,
        [](const Terminal& t) { return t.curAttr() == invertedAttribute(); }},
    {dec, 6, "DECOM", assign<&Modes::originMode>, State::asked, isOn<&Modes::originMode>},
    {dec, 7, "DECAWM", changeWraparound, State::asked, isOn<&Modes::wraparound>},
    {dec, 8, "DECARM", nullptr, State::set},
    {dec, 9, "X10 mouse", changeMouseMode<MouseMode::x10>, State::asked, isMouseMode<MouseMode::x10>},
    {dec, 10, "toolbar", nullptr, State::permanentlyReset},
    {dec, 12, "cursor blink", assign<&Modes::cursorBlink>, State::asked, isOn<&Modes::cursorBlink>},
    {dec, 13, "cursor blink menu", nullptr, State::reset},
    {dec, 14, "cursor blink xor", nullptr, State::reset},
    {dec, 18, "DECPFF", nullptr, State::set},
    {dec, 19, "DECPEX", nullptr, State::set},
    {dec, 25, "DECTCEM", changeCursorVisibility, State::asked, [](const Terminal& t) { return !t.modes.cursorHidden; }},
    {dec, 30, "scrollbar", nullptr, State::reset},
    {dec, 40, "80 to 132", assign<&Modes::allow80To132>, State::asked, isOn<&Modes::allow80To132>},
    {dec, 41, "more fix", nothing, State::reset},
    {dec, 42, "DECNRCM", nullptr, State::permanentlyReset},
    {dec, 44, "margin bell", nullptr, State::permanentlyReset},
    {dec, 45, "reverse wrap", changeReverseWraparound, State::asked, isOn<&Modes::reverseWraparound>},
    {dec, 46, "logging", nullptr, State::permanentlyReset},
    {dec, 47, "alternate screen", changeBuffer, State::asked,
        [](const Terminal& t) { return t.isCurrentBufferAlternate(); }},
    {dec, 63, "DECNRCM code page", nothing, State::unknown},
    {dec, 66, "DECNKM", assign<&Modes::applicationKeypad>, State::asked, isOn<&Modes::applicationKeypad>},
    {dec, 67, "DECBKM", nullptr, State::permanentlyReset},
    {dec, 69, "DECLRMM", changeMarginMode, State::asked, isOn<&Modes::marginMode>},
    {dec, 80, "DECSDM", nullptr, State::permanentlyReset},
    {dec, 95, "DECNCSM", nothing, State::set},
    {dec, 1000, "VT200 mouse", changeMouseMode<MouseMode::vt200>, State::asked, isMouseMode<MouseMode::vt200>},
    {dec, 1001, "highlight mouse", nullptr, State::reset},
    {dec, 1002, "button-event mouse", changeMouseMode<MouseMode::buttonEventTracking>, State::asked,
        isMouseMode<MouseMode::buttonEventTracking>},
    {dec, 1003, "any-event mouse", changeMouseMode<MouseMode::anyEvent>, State::asked,
        isMouseMode<MouseMode::anyEvent>},
    {dec, 1004, "focus events", assign<&Modes::sendFocus>, State::asked, isOn<&Modes::sendFocus>},
    {dec, 1005, "UTF-8 mouse", changeMouseProtocol<MouseProtocolEncoding::utf8>, State::asked,
        isMouseProtocol<MouseProtocolEncoding::utf8>},
    {dec, 1006, "SGR mouse", changeMouseProtocol<MouseProtocolEncoding::sgr>, State::asked,
        isMouseProtocol<MouseProtocolEncoding::sgr>},
    {dec, 1015, "urxvt mouse", changeMouseProtocol<MouseProtocolEncoding::urxvt>, State::asked,
        isMouseProtocol<MouseProtocolEncoding::urxvt>},
    {dec, 1016, "SGR pixel mouse", changeMouseProtocol<MouseProtocolEncoding::sgrPixels>, State::asked,
        isMouseProtocol<MouseProtocolEncoding::sgrPixels>},
    {dec, 1034, "eight-bit meta", nothing, State::permanentlyReset},
    {dec, 1047, "alternate screen", changeBuffer, State::unknown},
    {dec, 1048, "save cursor", changeSavedCursor, State::unknown},
    {dec, 1049, "alternate screen and cursor", changeBufferAndCursor, State::unknown},
    {dec, 2004, "bracketed paste", assign<&Modes::bracketedPasteMode>, State::asked, isOn<&Modes::bracketedPasteMode>},
    {dec, 2026, "synchronized output", changeSynchronizedOutput, State::asked,
        [](const Terminal& t) { return t.synchronizedOutputActive(); }},
};

const Mode* find(std::string_view collect, std::int64_t number) {
    const bool isDec = collect.starts_with('?');
    for (const Mode& mode : modes) {
        if (mode.isDec == isDec && mode.number == number)
            return &mode;
    }
    return nullptr;
}

void changeModes(Terminal& terminal, const ControlSequence& sequence, bool on) {
    if (!sequence.collect.empty() && sequence.collect != "?")
        return;
    for (const std::int64_t number : sequence.parameters) {
        const Mode* mode = find(sequence.collect, number);
        if (mode != nullptr && mode->change != nullptr)
            mode->change(terminal, on);
        else if (!terminal.silentLog)
            terminal.log("Unhandled mode " + std::string(sequence.collect) + std::to_string(number));
    }
}

}

void setMode(Terminal& terminal, const ControlSequence& sequence) {
    changeModes(terminal, sequence, true);
}

void resetMode(Terminal& terminal, const ControlSequence& sequence) {
    changeModes(terminal, sequence, false);
}

void requestMode(Terminal& terminal, const ControlSequence& sequence) {
    const std::int64_t number = sequence.at(0);
    const Mode* mode = find(sequence.collect, number);
    State state = mode == nullptr ? State::unknown : mode->state;
    if (state == State::asked)
        state = mode->isSet(terminal) ? State::set : State::reset;
    std::string reply(terminal.cc.CSI());
    // The parser gives an omitted parameter as 0.
    if (number == 0)
        reply += ";0$y";
    else
        reply += (sequence.collect.starts_with('?') ? "?" : "") + std::to_string(number) + ";" +
            std::to_string(static_cast<int>(state)) + "$y";
    terminal.sendResponse(reply);
}

}
