#include "Cells/TinyAtom.h"

#include <utility>

namespace termcore {

std::uint16_t TinyAtom::lastUsed = 0;

std::unordered_map<std::uint16_t, std::string>& TinyAtom::map() {
    static std::unordered_map<std::uint16_t, std::string> values;
    return values;
}

std::optional<TinyAtom> TinyAtom::lookup(std::string value) {
    if (lastUsed >= maximumCode)
        return std::nullopt;
    const TinyAtom atom{static_cast<std::uint16_t>(lastUsed + 1)};
    map().insert_or_assign(atom.code, std::move(value));
    lastUsed = atom.code;
    return atom;
}

void TinyAtom::release(std::uint16_t code) {
    map().erase(code);
}

const std::string* TinyAtom::target() const {
    const auto found = map().find(code);
    return found == map().end() ? nullptr : &found->second;
}

}
