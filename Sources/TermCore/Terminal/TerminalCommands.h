#pragma once

#include "Parser/ControlSequence.h"

namespace termcore {

class Terminal;

namespace commands {

// Bell, resets, character sets, line render modes, conformance: what belongs to the terminal as a whole.
void nothing(Terminal& terminal, const ControlSequence& sequence);
void bell(Terminal& terminal, const ControlSequence& sequence);
void reset(Terminal& terminal, const ControlSequence& sequence);
void softReset(Terminal& terminal, const ControlSequence& sequence);
void setConformanceLevel(Terminal& terminal, const ControlSequence& sequence);
void applicationKeypad(Terminal& terminal, const ControlSequence& sequence);
void numericKeypad(Terminal& terminal, const ControlSequence& sequence);
void sevenBitControls(Terminal& terminal, const ControlSequence& sequence);
void eightBitControls(Terminal& terminal, const ControlSequence& sequence);
void shiftIn(Terminal& terminal, const ControlSequence& sequence);
void shiftOut(Terminal& terminal, const ControlSequence& sequence);
void lockingShift2(Terminal& terminal, const ControlSequence& sequence);
void lockingShift3(Terminal& terminal, const ControlSequence& sequence);
void designateCharset(Terminal& terminal, const ControlSequence& sequence);
void selectDefaultCoding(Terminal& terminal, const ControlSequence& sequence);
void doubleHeightTop(Terminal& terminal, const ControlSequence& sequence);
void doubleHeightBottom(Terminal& terminal, const ControlSequence& sequence);
void singleWidth(Terminal& terminal, const ControlSequence& sequence);
void doubleWidth(Terminal& terminal, const ControlSequence& sequence);

}

}
