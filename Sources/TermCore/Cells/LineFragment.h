#pragma once

#include <optional>
#include <string>

namespace termcore {

/// A piece of extracted text: where it began in its row, and how many characters it has.
struct LineFragment {
    std::optional<std::string> text;
    int line = 0;      ///< absolute row
    int location = -1; ///< start column; -1 for a newline
    int length = 0;

    bool operator==(const LineFragment&) const = default;
};

}
