#pragma once

#include "Cells/Attribute.h"
#include "Cells/Cell.h"
#include "Cells/TinyAtom.h"

#include <cstdint>

namespace termcore {

/// A grid cell, unfolded for readers.
struct CharData {
    std::int32_t code = 0; ///< scalar value, or above `graphemeBase` an index of the grapheme table; 0: empty
    std::int8_t width = 1; ///< columns taken; 0 in the second cell of a wide glyph
    TinyAtom payload;
    std::uint8_t unused = 0;
    Attribute attribute;

    static constexpr std::int32_t graphemeBase = 0x400000;
    static const CharData Null;

    bool hasPayload() const { return payload.code != 0; }
    const std::string* getPayload() const { return payload.target(); }
    void setPayload(TinyAtom atom) { payload = atom; }
    bool isSimpleRune() const { return code <= graphemeBase; }

    bool operator==(const CharData&) const = default;
};

inline const CharData CharData::Null{};

}
