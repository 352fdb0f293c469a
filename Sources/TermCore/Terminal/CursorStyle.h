#pragma once

#include <cstdint>

namespace termcore {

/// The shapes of DECSCUSR, in its order.
enum class CursorStyle : std::uint8_t { blinkBlock, steadyBlock, blinkUnderline, steadyUnderline, blinkBar, steadyBar };

}
