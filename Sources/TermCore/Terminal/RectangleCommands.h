#pragma once

#include "Parser/ControlSequence.h"

#include <optional>

namespace termcore {

class Terminal;

namespace commands {

/// A rectangle of the screen, 0-based and inclusive.
struct Rectangle {
    int top;
    int left;
    int bottom;
    int right;
};

/// The rectangle that four parameters from `first` on describe; nothing when it is empty.
std::optional<Rectangle> rectangleFromRequest(
    const Terminal& terminal, const ControlSequence& sequence, std::size_t first);

void copyRectangularArea(Terminal& terminal, const ControlSequence& sequence);
void fillRectangularArea(Terminal& terminal, const ControlSequence& sequence);
void eraseRectangularArea(Terminal& terminal, const ControlSequence& sequence);
void selectiveEraseRectangularArea(Terminal& terminal, const ControlSequence& sequence);
void requestChecksum(Terminal& terminal, const ControlSequence& sequence);
void enableLocatorReporting(Terminal& terminal, const ControlSequence& sequence);

}

}
