#pragma once

#include "Parser/ControlSequence.h"

namespace termcore {

class Terminal;

namespace commands {

void setMode(Terminal& terminal, const ControlSequence& sequence);
void resetMode(Terminal& terminal, const ControlSequence& sequence);
/// DECRQM
void requestMode(Terminal& terminal, const ControlSequence& sequence);

}

}
