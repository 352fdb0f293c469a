#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace termcore {

/// Codes for what does not fit a cell as one scalar value: whole extended grapheme clusters (UAX #29). It only grows.
class GraphemeTable {
public:
    static constexpr std::int32_t firstCode = 0x400001;
    static constexpr std::int32_t lastCode = 0xFFFFFF; ///< what the 24 bits of a cell can hold

    /// The code of a whole cluster: 10 for CR LF, the value of a cluster that is one UTF-16 unit, else an entry. Nothing
    /// when the codes are used up.
    std::optional<std::int32_t> code(std::u32string_view cluster);
    /// The text of a code; a space for a code that names nothing.
    std::u32string text(std::int32_t code) const;
    std::string utf8(std::int32_t code) const;
    void appendUtf8(std::string& out, std::int32_t code) const;

    std::size_t size() const { return indexToChar.size(); }
    /// The last scalar of a code's text.
    char32_t lastScalar(std::int32_t code) const;

    /// True when the scalars form exactly one extended grapheme cluster.
    static bool isOneCluster(std::u32string_view scalars);

private:
    std::unordered_map<std::u32string, std::int32_t> charToIndex;
    std::vector<std::u32string> indexToChar; // by code - firstCode
};

}
