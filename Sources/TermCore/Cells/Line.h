#pragma once

#include "Cells/LineFragment.h"

#include <utility>
#include <vector>

namespace termcore {

/// A logical line of extracted text.
struct Line {
    std::vector<LineFragment> fragments;
    int length = 0; ///< the sum of the fragments' lengths

    void add(LineFragment fragment) {
        length += fragment.length;
        fragments.push_back(std::move(fragment));
    }
    bool operator==(const Line&) const = default;
};

}
