#pragma once

#include "Cells/Attribute.h"
#include "Cells/TinyAtom.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace termcore {

/// Turns the look of a cell, an `Attribute` and a payload, into 32 bits. Default and palette colours are packed into
/// the id itself, and so is one true colour beside a default one with the usual styles. Only what is left (two true
/// colours, underline colours, payloads) needs an entry in the table. Entries are found through open addressing and
/// reclaimed by `collect`, when the owner has marked what its cells still use.
class StyleTable {
public:
    using Id = std::uint32_t;

    static constexpr Id defaultStyle = 0;

    Id idOf(const Attribute& attribute, TinyAtom payload = {}) {
        if (const auto id = packed(attribute); id && payload.code == 0)
            return *id;
        return intern(attribute, payload);
    }
    Attribute attributeOf(Id id) const;
    TinyAtom payloadOf(Id id) const { return isInterned(id) ? entries[indexOf(id)].payload : TinyAtom{}; }

    static constexpr bool isInterned(Id id) { return (id & kindMask) == internedKind; }

    /// The id of an attribute that needs no entry, else nothing.
    static constexpr std::optional<Id> packed(const Attribute& a) {
        using Kind = Attribute::Color::Kind;
        if (!a.underlineColor.isAbsent())
            return std::nullopt;
        if (a.fg.kind < Kind::trueColor && a.bg.kind < Kind::trueColor)
            return packedColor(a.fg) << fgShift | packedColor(a.bg) << bgShift |
                static_cast<Id>(a.style) << styleShift | static_cast<Id>(a.underlineStyle) << underlineShift;
        const bool isForeground = a.fg.kind == Kind::trueColor;
        const Attribute::Color& color = isForeground ? a.fg : a.bg;
        const Attribute::Color& other = isForeground ? a.bg : a.fg;
        const bool hasPlainUnderline =
            contains(a.style, CharacterStyle::underline) == (a.underlineStyle == UnderlineStyle::single);
        if (other.kind != Kind::defaultColor || !hasPlainUnderline || a.underlineStyle > UnderlineStyle::single)
            return std::nullopt;
        Id styles = 0;
        for (unsigned i = 0; i < shortStyleCount; ++i)
            styles |= contains(a.style, shortStyles[i]) ? 1U << i : 0U;
        if ((a.style & ~allShortStyles()) != CharacterStyle::none)
            return std::nullopt;
        return (isForeground ? foregroundKind : backgroundKind) | styles << shortStyleShift |
            static_cast<Id>(color.red) << 16 | static_cast<Id>(color.green) << 8 | color.blue;
    }

    /// True when enough entries have come since the last collection to make another one worth its walk.
    bool wantsCollection() const { return liveCount >= collectionThreshold; }
    std::size_t size() const { return liveCount; }

    /// Frees all entries whose mark is not set; `marks` is indexed by `indexOf` and may be shorter than the table.
    void collect(const std::vector<bool>& marks);
    static constexpr std::size_t indexOf(Id id) { return id & ~kindMask; }
    std::size_t capacity() const { return entries.size(); }

private:
    // What the id holds, in its two high bits; 0: palette colours.
    static constexpr Id kindMask = 0xC0000000;
    static constexpr Id foregroundKind = 0x40000000;
    static constexpr Id internedKind = 0x80000000;
    static constexpr Id backgroundKind = 0xC0000000;
    static constexpr unsigned shortStyleShift = 24;
    static constexpr unsigned shortStyleCount = 6;
    static constexpr CharacterStyle shortStyles[shortStyleCount] = {CharacterStyle::bold, CharacterStyle::dim,
        CharacterStyle::italic, CharacterStyle::underline, CharacterStyle::inverse, CharacterStyle::crossedOut};
    static constexpr CharacterStyle allShortStyles() { return ~(CharacterStyle::blink | CharacterStyle::invisible); }
    static constexpr unsigned fgShift = 0;
    static constexpr unsigned bgShift = 9;
    static constexpr unsigned styleShift = 18;
    static constexpr unsigned underlineShift = 26;
    static constexpr std::size_t initialThreshold = 1U << 16;

    struct Entry {
        Attribute attribute;
        TinyAtom payload;
        bool operator==(const Entry&) const = default;
    };

    // 0 default, 1 inverted default, 2 to 257 the palette
    static constexpr Id packedColor(const Attribute::Color& color) {
        return color.kind == Attribute::Color::Kind::ansi256 ? color.code() + 2U : static_cast<Id>(color.kind);
    }
    static Attribute::Color unpackedColor(Id field);
    static std::size_t hashOf(const Entry& entry);

    Id intern(const Attribute& attribute, TinyAtom payload);
    void rebuildBuckets(std::size_t bucketCount);

    std::vector<Entry> entries;
    std::vector<bool> used;
    std::vector<std::uint32_t> freeIndices;
    std::vector<std::uint32_t> buckets; // index + 1, 0 is free; the size is a power of two
    std::size_t liveCount = 0;
    std::size_t collectionThreshold = initialThreshold;
};

}
