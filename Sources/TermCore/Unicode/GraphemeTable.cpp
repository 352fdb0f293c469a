#include "Unicode/GraphemeTable.h"

#include "Unicode/UnicodeUtil.h"
#include "Unicode/Utf8.h"

#include <utf8proc.h>

namespace termcore {

std::optional<std::int32_t> GraphemeTable::code(std::u32string_view cluster) {
    if (cluster == U"\r\n")
        return 10;
    if (cluster.size() == 1 && cluster[0] < 0x10000)
        return static_cast<std::int32_t>(cluster[0]);
    std::u32string key(cluster);
    if (const auto found = charToIndex.find(key); found != charToIndex.end())
        return found->second;
    if (indexToChar.size() > static_cast<std::size_t>(lastCode - firstCode))
        return std::nullopt;
    const auto next = static_cast<std::int32_t>(firstCode + static_cast<std::int32_t>(indexToChar.size()));
    indexToChar.push_back(key);
    charToIndex.emplace(std::move(key), next);
    return next;
}

std::u32string GraphemeTable::text(std::int32_t code) const {
    if (code < firstCode)
        return {
            code >= 0 && UnicodeUtil::isScalar(static_cast<std::uint32_t>(code)) ? static_cast<char32_t>(code) : U' '};
    const auto index = static_cast<std::size_t>(code - firstCode);
    return index < indexToChar.size() ? indexToChar[index] : std::u32string(1, U' ');
}

char32_t GraphemeTable::lastScalar(std::int32_t code) const {
    if (code < firstCode)
        return static_cast<char32_t>(code);
    const auto index = static_cast<std::size_t>(code - firstCode);
    return index < indexToChar.size() ? indexToChar[index].back() : U' ';
}

void GraphemeTable::appendUtf8(std::string& out, std::int32_t code) const {
    if (code < firstCode) {
        utf8::append(out,
            code >= 0 && UnicodeUtil::isScalar(static_cast<std::uint32_t>(code)) ? static_cast<std::uint32_t>(code)
                                                                                 : U' ');
        return;
    }
    for (const char32_t scalar : text(code))
        utf8::append(out, scalar);
}

std::string GraphemeTable::utf8(std::int32_t code) const {
    std::string out;
    appendUtf8(out, code);
    return out;
}

bool GraphemeTable::isOneCluster(std::u32string_view scalars) {
    utf8proc_int32_t state = 0;
    for (std::size_t i = 1; i < scalars.size(); ++i) {
        if (utf8proc_grapheme_break_stateful(
                static_cast<utf8proc_int32_t>(scalars[i - 1]), static_cast<utf8proc_int32_t>(scalars[i]), &state))
            return false;
    }
    return !scalars.empty();
}

}
