#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace termcore {

/// An RGB colour with 16 bits for each channel, as X11 counts them.
class Color {
public:
    std::uint16_t red = 0;
    std::uint16_t green = 0;
    std::uint16_t blue = 0;

    /// Each 8-bit value fills both bytes of its channel.
    static constexpr Color fromBytes(unsigned r, unsigned g, unsigned b) {
        return {static_cast<std::uint16_t>(r * 257), static_cast<std::uint16_t>(g * 257),
            static_cast<std::uint16_t>(b * 257)};
    }

    /// XParseColor's "#rgb" (3 to 12 digits) and "rgb:r/g/b" forms; anything else is nothing.
    static std::optional<Color> parseColor(std::string_view text);
    /// "rgb:rrrr/gggg/bbbb"
    std::string formatAsXcolor() const;

    static const Color defaultForeground;
    static const Color defaultBackground;
    static const std::array<Color, 16> terminalAppColors;

    constexpr bool operator==(const Color&) const = default;
};

inline constexpr Color Color::defaultForeground{0x8A3D, 0x8A3D, 0x8A3D};
inline constexpr Color Color::defaultBackground{};
inline constexpr std::array<Color, 16> Color::terminalAppColors{
    Color::fromBytes(0, 0, 0),
    Color::fromBytes(194, 54, 33),
    Color::fromBytes(37, 188, 36),
    Color::fromBytes(173, 173, 39),
    Color::fromBytes(73, 46, 225),
    Color::fromBytes(211, 56, 211),
    Color::fromBytes(51, 187, 200),
    Color::fromBytes(203, 204, 205),
    Color::fromBytes(129, 131, 131),
    Color::fromBytes(252, 57, 31),
    Color::fromBytes(49, 231, 34),
    Color::fromBytes(234, 236, 35),
    Color::fromBytes(88, 51, 255),
    Color::fromBytes(249, 53, 248),
    Color::fromBytes(20, 240, 240),
    Color::fromBytes(233, 235, 235),
};

}
