#pragma once

#include "Parser/ControlSequence.h"

namespace termcore {

class Terminal;

namespace commands {

void lineFeed(Terminal& terminal, const ControlSequence& sequence);
void index(Terminal& terminal, const ControlSequence& sequence);
void nextLine(Terminal& terminal, const ControlSequence& sequence);
void reverseIndex(Terminal& terminal, const ControlSequence& sequence);
void backIndex(Terminal& terminal, const ControlSequence& sequence);
void forwardIndex(Terminal& terminal, const ControlSequence& sequence);
void insertLines(Terminal& terminal, const ControlSequence& sequence);
void deleteLines(Terminal& terminal, const ControlSequence& sequence);
void scrollUp(Terminal& terminal, const ControlSequence& sequence);
void scrollDown(Terminal& terminal, const ControlSequence& sequence);
void insertColumns(Terminal& terminal, const ControlSequence& sequence);
void deleteColumns(Terminal& terminal, const ControlSequence& sequence);
void setScrollRegion(Terminal& terminal, const ControlSequence& sequence);
/// DECSLRM and SCOSC share CSI s: margins in margin mode, else the cursor is saved.
void setMarginsOrSaveCursor(Terminal& terminal, const ControlSequence& sequence);

}

}
