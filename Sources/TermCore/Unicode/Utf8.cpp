#include "Unicode/Utf8.h"

namespace termcore::utf8 {

void append(std::string& out, std::uint32_t scalar) {
    if (scalar < 0x80) {
        out += static_cast<char>(scalar);
    } else if (scalar < 0x800) {
        out += static_cast<char>(0xC0 | scalar >> 6);
        out += static_cast<char>(0x80 | (scalar & 0x3F));
    } else if (scalar < 0x10000) {
        out += static_cast<char>(0xE0 | scalar >> 12);
        out += static_cast<char>(0x80 | (scalar >> 6 & 0x3F));
        out += static_cast<char>(0x80 | (scalar & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | scalar >> 18);
        out += static_cast<char>(0x80 | (scalar >> 12 & 0x3F));
        out += static_cast<char>(0x80 | (scalar >> 6 & 0x3F));
        out += static_cast<char>(0x80 | (scalar & 0x3F));
    }
}

std::u32string scalars(std::string_view text) {
    std::u32string result;
    result.reserve(text.size());
    std::span rest(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
    while (!rest.empty()) {
        const Utf8Scalar next = decode(rest);
        result += next.isValid ? static_cast<char32_t>(next.scalar) : U'\uFFFD';
        rest = rest.subspan(next.length == 0 ? rest.size() : next.length);
    }
    return result;
}

bool isValid(std::string_view text) {
    std::span rest(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
    while (!rest.empty()) {
        const Utf8Scalar next = decode(rest);
        if (!next.isValid)
            return false;
        rest = rest.subspan(next.length);
    }
    return true;
}

}
