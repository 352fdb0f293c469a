#pragma once

#include "Terminal/Color.h"
#include "Terminal/TerminalOptions.h"

#include <array>

namespace termcore {

/// The 256 indexed colours: 16 base colours, and 240 that are made from them or from fixed levels.
class Palette {
public:
    using Colors = std::array<Color, 256>;

    std::array<Color, 16> installedColors = Color::terminalAppColors;
    Colors defaultAnsiColors{};
    Colors ansiColors{}; ///< in force: the defaults with what OSC 4 changed

    void rebuild(Ansi256PaletteStrategy strategy, const Color& foreground, const Color& background);

    /// xterm's 6x6x6 cube and 24 greys.
    static Colors generateXtermPalette(const std::array<Color, 16>& base);
    /// Cube and greys interpolated in CIE L*a*b* between the base colours, so that they suit them.
    static Colors generateBase16LabPalette(
        const std::array<Color, 16>& base, const Color& foreground, const Color& background);
};

}
