#pragma once

#include "Terminal/CharSets.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace termcore {

/// The four designated sets G0 to G3 and the one that is shifted in (ISO 2022).
class CharsetState {
public:
    const CharsetTable* active = nullptr; ///< null: no translation

    int level() const { return gLevel; }
    const CharsetTable* slot(int index) const { return gCharsets[static_cast<std::size_t>(index)]; }

    void setgCharset(int index, const CharsetTable* table) {
        gCharsets[static_cast<std::size_t>(index)] = table;
        if (index == gLevel)
            active = table;
    }
    void setgLevel(int newLevel) {
        gLevel = newLevel;
        active = gCharsets[static_cast<std::size_t>(newLevel)];
    }
    void reset() { *this = {}; }

private:
    std::array<const CharsetTable*, 4> gCharsets{};
    int gLevel = 0;
};

}
