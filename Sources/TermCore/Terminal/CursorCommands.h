#pragma once

#include "Parser/ControlSequence.h"

namespace termcore {

class Terminal;

namespace commands {

/// Brings the cursor back into the screen, or the region in origin mode. Without `limitColumns` it may stay behind the
/// last column, where a glyph left it.
void restrictCursor(Terminal& terminal, bool limitColumns = true);
void setCursor(Terminal& terminal, int col, int row);

void backspace(Terminal& terminal, const ControlSequence& sequence);
void horizontalTab(Terminal& terminal, const ControlSequence& sequence);
void carriageReturn(Terminal& terminal, const ControlSequence& sequence);
void tabSet(Terminal& terminal, const ControlSequence& sequence);
void tabClear(Terminal& terminal, const ControlSequence& sequence);
void cursorForwardTab(Terminal& terminal, const ControlSequence& sequence);
void cursorBackwardTab(Terminal& terminal, const ControlSequence& sequence);
void cursorUp(Terminal& terminal, const ControlSequence& sequence);
void cursorDown(Terminal& terminal, const ControlSequence& sequence);
void cursorForward(Terminal& terminal, const ControlSequence& sequence);
void cursorBackward(Terminal& terminal, const ControlSequence& sequence);
void cursorNextLine(Terminal& terminal, const ControlSequence& sequence);
void cursorPrecedingLine(Terminal& terminal, const ControlSequence& sequence);
void cursorCharAbsolute(Terminal& terminal, const ControlSequence& sequence);
void cursorPosition(Terminal& terminal, const ControlSequence& sequence);
void charPosAbsolute(Terminal& terminal, const ControlSequence& sequence);
void hPositionRelative(Terminal& terminal, const ControlSequence& sequence);
void linePosAbsolute(Terminal& terminal, const ControlSequence& sequence);
void vPositionRelative(Terminal& terminal, const ControlSequence& sequence);
void hvPosition(Terminal& terminal, const ControlSequence& sequence);
void saveCursor(Terminal& terminal, const ControlSequence& sequence);
void restoreCursor(Terminal& terminal, const ControlSequence& sequence);
void setCursorStyle(Terminal& terminal, const ControlSequence& sequence);

}

}
