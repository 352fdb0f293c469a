#pragma once

#include <array>
#include <cstdint>

namespace termcore {

/// A 94-character set: what each byte prints, 0 where the byte stands for itself.
class CharsetTable {
public:
    std::array<char32_t, 128> replacement{};
};

/// The sets that SCS can designate (DEC STD 070), by final byte.
namespace CharSets {

/// Null when `final` names no set. `isPlain` tells the United States set, which replaces nothing.
const CharsetTable* find(std::uint8_t final);
bool isPlain(std::uint8_t final);

}

}
