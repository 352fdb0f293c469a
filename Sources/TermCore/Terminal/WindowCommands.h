#pragma once

#include "Parser/ControlSequence.h"

namespace termcore {

class Terminal;

namespace commands {

/// XTWINOPS
void windowOptions(Terminal& terminal, const ControlSequence& sequence);
/// XTSMTITLE and XTRMTITLE
void setTitleModes(Terminal& terminal, const ControlSequence& sequence);
void resetTitleModes(Terminal& terminal, const ControlSequence& sequence);

}

}
