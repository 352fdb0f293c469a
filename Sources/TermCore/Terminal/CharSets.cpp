#include "Terminal/CharSets.h"

#include <cstddef>
#include <string_view>

namespace termcore::CharSets {
namespace {

struct CharacterSet {
    std::string_view finals;
    std::string_view replaced; // bytes, in the order of their replacements
    std::u32string_view characters;
};

constexpr CharacterSet sets[] = {
    // DEC Special Graphics
    {"02", "`abcdefghijklmnopqrstuvwxyz{|}~", U"◆▒␉␌␍␊°±␤␋┘┐┌└┼⎺⎻─⎼⎽├┤┴┬│≤≥π≠£·"},
    {"A", "#", U"£"},
    {"B", "", U""},
    // Dutch
    {"4", "#@[\\]{|}~", U"£¾ĳ½|¨f¼´"},
    // Finnish
    {"C5", "[\\]^`{|}~", U"ÄÖÅÜéäöåü"},
    // French
    {"R", "#@[\\]{|}~", U"£à°ç§éùè¨"},
    // French Canadian
    {"Q", "@[\\]^`{|}~", U"àâçêîôéùèû"},
    // German
    {"K", "@[\\]{|}~", U"§ÄÖÜäöüß"},
    // Italian
    {"Y", "#@[\\]`{|}~", U"£§°çéùàòèì"},
    // Norwegian and Danish
    {"E6", "@[\\]^`{|}~", U"ÄÆØÅÜäæøåü"},
    // Spanish
    {"Z", "#@[\\]{|}", U"£§¡Ñ¿°ñç"},
    // Swedish
    {"H7", "@[\\]^`{|}~", U"ÉÄÖÅÜéäöåü"},
    // Swiss
    {"=", "#@[\\]^_`{|}~", U"ùàéçêîèôäöüû"},
};
constexpr std::size_t setCount = std::size(sets);

constexpr std::array<CharsetTable, setCount> buildTables() {
    std::array<CharsetTable, setCount> tables{};
    for (std::size_t i = 0; i < setCount; ++i) {
        for (std::size_t n = 0; n < sets[i].replaced.size(); ++n)
            tables[i].replacement[static_cast<unsigned char>(sets[i].replaced[n])] = sets[i].characters[n];
    }
    return tables;
}

constexpr bool isConsistent() {
    for (const CharacterSet& set : sets) {
        if (set.replaced.size() != set.characters.size())
            return false;
    }
    return true;
}
static_assert(isConsistent());

constexpr std::array<CharsetTable, setCount> tables = buildTables();

}

const CharsetTable* find(std::uint8_t final) {
    for (std::size_t i = 0; i < setCount; ++i) {
        if (sets[i].finals.find(static_cast<char>(final)) != std::string_view::npos)
            return &tables[i];
    }
    return nullptr;
}

bool isPlain(std::uint8_t final) {
    return final == 'B';
}

}
