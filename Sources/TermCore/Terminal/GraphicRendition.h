#pragma once

#include "Cells/Attribute.h"
#include "Parser/ControlSequence.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace termcore {

class Terminal;

namespace commands {

void selectGraphicRendition(Terminal& terminal, const ControlSequence& sequence);

/// A colour and how many parameters it took.
struct ExtendedColor {
    std::optional<Attribute::Color> color;
    std::size_t used = 0;
};

/// The colour that follows 38, 48 or 58, from its mode at `start` on: 5 for indexed, 2 for direct colour, with semicolons
/// (xterm) or colons (ISO 8613-6).
ExtendedColor parseExtendedColor(
    std::size_t start, bool usesColons, std::span<const std::int64_t> parameters, std::string_view separators);

}

}
