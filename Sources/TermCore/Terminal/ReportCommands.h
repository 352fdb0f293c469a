#pragma once

#include "Parser/ControlSequence.h"

namespace termcore {

class Terminal;

namespace commands {

/// DA
void sendDeviceAttributes(Terminal& terminal, const ControlSequence& sequence);
/// DSR
void deviceStatus(Terminal& terminal, const ControlSequence& sequence);

}

}
