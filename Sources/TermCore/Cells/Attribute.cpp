#include "Cells/Attribute.h"

#include <cstring>

namespace termcore {
namespace {

// ECMA-48 SGR 30-37/40-47, aixterm 90-97/100-107, and ISO 8613-6 direct and indexed colour.
struct ColorIntroducers {
    const char* low;      // indices 0 to 7
    const char* bright;   // indices 8 to 15
    const char* extended; // everything else
};
constexpr ColorIntroducers foregroundIntroducers{";3", ";9", ";38"};
constexpr ColorIntroducers backgroundIntroducers{";4", ";10", ";48"};

void appendColor(std::string& out, const Attribute::Color& color, const ColorIntroducers& introducers) {
    using Kind = Attribute::Color::Kind;
    switch (color.kind) {
    case Kind::ansi256:
        if (color.code() < 8)
            out += introducers.low + std::to_string(color.code());
        else if (color.code() < 16)
            out += introducers.bright + std::to_string(color.code() - 8);
        else
            out += std::string(introducers.extended) + ";5;" + std::to_string(color.code());
        break;
    case Kind::trueColor:
        out += std::string(introducers.extended) + ";2;" + std::to_string(color.red) + ";" +
            std::to_string(color.green) + ";" + std::to_string(color.blue);
        break;
    case Kind::defaultColor:
    case Kind::defaultInvertedColor:
    case Kind::absent: break;
    }
}

}

std::string Attribute::toSgr() const {
    static constexpr struct {
        CharacterStyle bit;
        const char* parameter;
    } styleParameters[] = {
        {CharacterStyle::bold, ";1"},
        {CharacterStyle::underline, ";4"},
        {CharacterStyle::blink, ";5"},
        {CharacterStyle::inverse, ";7"},
        {CharacterStyle::invisible, ";8"},
    };
    std::string out = "0";
    for (const auto& [bit, parameter] : styleParameters) {
        if (contains(style, bit))
            out += parameter;
    }
    appendColor(out, fg, foregroundIntroducers);
    appendColor(out, bg, backgroundIntroducers);
    return out + "m";
}

}

std::size_t std::hash<termcore::Attribute>::operator()(const termcore::Attribute& attribute) const noexcept {
    static_assert(sizeof(termcore::Attribute) == 14 && std::has_unique_object_representations_v<termcore::Attribute>);
    std::uint64_t low = 0;
    std::uint64_t high = 0;
    std::memcpy(&low, &attribute, 8);
    std::memcpy(&high, reinterpret_cast<const char*>(&attribute) + 6, 8);
    std::uint64_t mixed = (low ^ (high * 0x9E3779B97F4A7C15ULL)) * 0xFF51AFD7ED558CCDULL;
    return static_cast<std::size_t>(mixed ^ (mixed >> 32));
}
