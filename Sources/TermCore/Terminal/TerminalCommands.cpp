#include "Terminal/TerminalCommands.h"

#include "Terminal/Terminal.h"

namespace termcore::commands {
namespace {

void setLineRenderMode(Terminal& terminal, BufferLine::RenderLineMode mode) {
    Buffer& buffer = terminal.buffer();
    buffer.screenLine(buffer.y()).renderMode = mode;
    terminal.updateRange(buffer.y());
}

}

void nothing(Terminal&, const ControlSequence&) {}

void bell(Terminal& terminal, const ControlSequence&) {
    if (terminal.delegate() != nullptr)
        terminal.delegate()->bell(terminal);
}

void reset(Terminal& terminal, const ControlSequence&) {
    terminal.resetToInitialState();
}

void softReset(Terminal& terminal, const ControlSequence&) {
    terminal.softReset();
}

void setConformanceLevel(Terminal& terminal, const ControlSequence& sequence) {
    switch (sequence.at(0)) {
    case 61:
        terminal.modes.conformance = TerminalConformance::vt100;
        terminal.cc.send8bit = false;
        return;
    case 62: terminal.modes.conformance = TerminalConformance::vt200; break;
    case 63: terminal.modes.conformance = TerminalConformance::vt300; break;
    case 64: terminal.modes.conformance = TerminalConformance::vt400; break;
    default: terminal.modes.conformance = TerminalConformance::vt500; break;
    }
    if (sequence.parameters.size() > 1)
        terminal.cc.send8bit = sequence.at(1) == 0 || sequence.at(1) == 2;
}

void applicationKeypad(Terminal& terminal, const ControlSequence&) {
    terminal.modes.applicationKeypad = true;
}

void numericKeypad(Terminal& terminal, const ControlSequence&) {
    terminal.modes.applicationKeypad = false;
}

void sevenBitControls(Terminal& terminal, const ControlSequence&) {
    terminal.cc.send8bit = false;
}

void eightBitControls(Terminal& terminal, const ControlSequence&) {
    terminal.cc.send8bit = true;
}

void shiftIn(Terminal& terminal, const ControlSequence&) {
    terminal.charsets.setgLevel(0);
}

void shiftOut(Terminal& terminal, const ControlSequence&) {
    terminal.charsets.setgLevel(1);
}

void lockingShift2(Terminal& terminal, const ControlSequence&) {
    terminal.charsets.setgLevel(2);
}

void lockingShift3(Terminal& terminal, const ControlSequence&) {
    terminal.charsets.setgLevel(3);
}

void designateCharset(Terminal& terminal, const ControlSequence& sequence) {
    static constexpr struct {
        char introducer;
        int slot;
    } slots[] = {{'(', 0}, {'-', 0}, {')', 1}, {'.', 1}, {'*', 2}, {'/', 2}, {'+', 3}};
    const CharsetTable* table = CharSets::find(sequence.final);
    if (table == nullptr) {
        terminal.log("Unknown ESC Code: ESC + character set");
        return;
    }
    for (const auto& [introducer, slot] : slots) {
        if (sequence.collect[0] == introducer)
            terminal.charsets.setgCharset(slot, CharSets::isPlain(sequence.final) ? nullptr : table);
    }
}

void selectDefaultCoding(Terminal& terminal, const ControlSequence&) {
    terminal.charsets.setgLevel(0);
    terminal.charsets.setgCharset(0, nullptr);
}

void doubleHeightTop(Terminal& terminal, const ControlSequence&) {
    setLineRenderMode(terminal, BufferLine::RenderLineMode::doubledTop);
}

void doubleHeightBottom(Terminal& terminal, const ControlSequence&) {
    setLineRenderMode(terminal, BufferLine::RenderLineMode::doubledDown);
}

void singleWidth(Terminal& terminal, const ControlSequence&) {
    setLineRenderMode(terminal, BufferLine::RenderLineMode::single);
}

void doubleWidth(Terminal& terminal, const ControlSequence&) {
    setLineRenderMode(terminal, BufferLine::RenderLineMode::doubleWidth);
}

}
