#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace termcore {

/// The attribute bits of SGR (ECMA-48 8.3.117) that a cell can carry.
enum class CharacterStyle : std::uint8_t {
    none = 0x00,
    bold = 0x01,
    underline = 0x02,
    blink = 0x04,
    inverse = 0x08,
    invisible = 0x10,
    dim = 0x20,
    italic = 0x40,
    crossedOut = 0x80,
};

constexpr CharacterStyle operator|(CharacterStyle a, CharacterStyle b) {
    return static_cast<CharacterStyle>(static_cast<unsigned>(a) | static_cast<unsigned>(b));
}
constexpr CharacterStyle operator&(CharacterStyle a, CharacterStyle b) {
    return static_cast<CharacterStyle>(static_cast<unsigned>(a) & static_cast<unsigned>(b));
}
constexpr CharacterStyle operator~(CharacterStyle a) {
    return static_cast<CharacterStyle>(~static_cast<unsigned>(a) & 0xFFU);
}
constexpr CharacterStyle& operator|=(CharacterStyle& a, CharacterStyle b) {
    return a = a | b;
}
constexpr CharacterStyle& operator&=(CharacterStyle& a, CharacterStyle b) {
    return a = a & b;
}
constexpr bool contains(CharacterStyle set, CharacterStyle bit) {
    return (set & bit) == bit;
}

enum class UnderlineStyle : std::uint8_t { none, single, double_, curly, dotted, dashed };

/// How a cell looks. Plain bytes, comparable and hashable, so that a view can key caches by it.
struct Attribute {
    /// One of the four colour forms, or absent, in four bytes.
    struct Color {
        enum class Kind : std::uint8_t { defaultColor, defaultInvertedColor, ansi256, trueColor, absent };

        std::uint8_t red = 0; ///< the palette index when `kind` is `ansi256`
        std::uint8_t green = 0;
        std::uint8_t blue = 0;
        Kind kind = Kind::defaultColor;

        static constexpr Color ansi256(std::uint8_t code) { return {code, 0, 0, Kind::ansi256}; }
        static constexpr Color trueColor(std::uint8_t r, std::uint8_t g, std::uint8_t b) {
            return {r, g, b, Kind::trueColor};
        }
        static constexpr Color defaultColor() { return {}; }
        static constexpr Color defaultInvertedColor() { return {0, 0, 0, Kind::defaultInvertedColor}; }
        static constexpr Color absent() { return {0, 0, 0, Kind::absent}; }

        constexpr bool isAbsent() const { return kind == Kind::absent; }
        constexpr std::uint8_t code() const { return red; }
        constexpr bool operator==(const Color&) const = default;
    };

    Color fg;
    Color bg;
    CharacterStyle style = CharacterStyle::none;
    UnderlineStyle underlineStyle = UnderlineStyle::none;
    Color underlineColor = Color::absent();

    static const Attribute empty;

    constexpr bool operator==(const Attribute&) const = default;

    /// What an erased cell looks like: this background and nothing else (background colour erase).
    constexpr Attribute erased() const {
        Attribute result;
        result.bg = bg;
        return result;
    }

    /// The parameter string of the SGR sequence that selects this attribute, ending in "m".
    std::string toSgr() const;
};

inline constexpr Attribute Attribute::empty{};

static_assert(sizeof(Attribute::Color) == 4);
static_assert(sizeof(Attribute) == 14);

}

template <>
struct std::hash<termcore::Attribute> {
    std::size_t operator()(const termcore::Attribute& attribute) const noexcept;
};
