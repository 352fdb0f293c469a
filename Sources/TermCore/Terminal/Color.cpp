#include "Terminal/Color.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>

namespace termcore {
namespace {

std::optional<unsigned> parseHex(std::string_view digits) {
    if (digits.empty() || digits.size() > 4)
        return std::nullopt;
    unsigned value = 0;
    for (const char digit : digits) {
        const char lower = static_cast<char>(digit | 0x20);
        if (digit >= '0' && digit <= '9')
            value = value * 16 + static_cast<unsigned>(digit - '0');
        else if (lower >= 'a' && lower <= 'f')
            value = value * 16 + static_cast<unsigned>(lower - 'a' + 10);
        else
            return std::nullopt;
    }
    return value;
}

std::uint16_t scaled(unsigned value, std::size_t digits) {
    switch (digits) {
    case 1: return static_cast<std::uint16_t>(value * 0x1010);
    case 2: return static_cast<std::uint16_t>(value * 257);
    case 3: return static_cast<std::uint16_t>(value * 16 | value >> 4);
    default: return static_cast<std::uint16_t>(value);
    }
}

std::optional<Color> fromFields(std::string_view r, std::string_view g, std::string_view b) {
    const auto red = parseHex(r);
    const auto green = parseHex(g);
    const auto blue = parseHex(b);
    if (!red || !green || !blue)
        return std::nullopt;
    const std::size_t digits = std::max({r.size(), g.size(), b.size()});
    return Color{scaled(*red, digits), scaled(*green, digits), scaled(*blue, digits)};
}

}

std::optional<Color> Color::parseColor(std::string_view text) {
    if (text.starts_with('#')) {
        text.remove_prefix(1);
        const std::size_t third = text.size() / 3;
        if (text.size() % 3 != 0 || third == 0 || third > 4)
            return std::nullopt;
        return fromFields(text.substr(0, third), text.substr(third, third), text.substr(2 * third));
    }
    constexpr std::string_view prefix = "rgb:";
    if (!text.starts_with(prefix))
        return std::nullopt;
    text.remove_prefix(prefix.size());
    const std::size_t first = text.find('/');
    const std::size_t second = first == std::string_view::npos ? first : text.find('/', first + 1);
    if (second == std::string_view::npos)
        return std::nullopt;
    return fromFields(text.substr(0, first), text.substr(first + 1, second - first - 1), text.substr(second + 1));
}

std::string Color::formatAsXcolor() const {
    char text[24];
    const int length = std::snprintf(text, sizeof text, "rgb:%04x/%04x/%04x", red, green, blue);
    return {text, static_cast<std::size_t>(length)};
}

}
