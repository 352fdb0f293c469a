#pragma once

#include <utility>
#include <variant>

namespace Korvi {

template <class... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};

// Visits a variant with one callable for each case; a forgotten case does not compile.
template <class Variant, class... Cases>
decltype(auto) match(Variant&& variant, Cases&&... cases) {
    return std::visit(
        Overloaded<std::decay_t<Cases>...>{std::forward<Cases>(cases)...}, std::forward<Variant>(variant));
}

}
