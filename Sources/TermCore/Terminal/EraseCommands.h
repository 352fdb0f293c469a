#pragma once

#include "Parser/ControlSequence.h"

namespace termcore {

class Terminal;

namespace commands {

void eraseInDisplay(Terminal& terminal, const ControlSequence& sequence);
void eraseInLine(Terminal& terminal, const ControlSequence& sequence);
void eraseChars(Terminal& terminal, const ControlSequence& sequence);
void insertChars(Terminal& terminal, const ControlSequence& sequence);
void deleteChars(Terminal& terminal, const ControlSequence& sequence);
void repeatPrecedingCharacter(Terminal& terminal, const ControlSequence& sequence);
void screenAlignmentPattern(Terminal& terminal, const ControlSequence& sequence);

}

}
