#pragma once

#include "Terminal/CursorStyle.h"

#include <cstdint>
#include <string>

namespace termcore {

/// Where palette entries 16 to 255 come from.
enum class Ansi256PaletteStrategy : std::uint8_t { xterm, base16Lab };

/// What a terminal is made with; the defaults are those of a new one.
struct TerminalOptions {
    int cols = 80;
    int rows = 25;
    bool convertEol = false; ///< a line feed also returns the cursor to the left
    std::string termName = "xterm-256color";
    CursorStyle cursorStyle = CursorStyle::blinkBlock;
    bool screenReaderMode = false;
    int scrollback = 500; ///< lines of history
    int tabStopWidth = 8;
    bool enableSixelReported = true;
    std::int64_t kittyImageCacheLimitBytes = std::int64_t{320} << 20;
    Ansi256PaletteStrategy ansi256PaletteStrategy = Ansi256PaletteStrategy::base16Lab;

    bool operator==(const TerminalOptions&) const = default;
};

}
