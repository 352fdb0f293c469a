#pragma once

#include "Cells/Attribute.h"
#include "Cells/TinyAtom.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace termcore {

/// Turns the look of a cell, an `Attribute` and a payload, into 32 bits. Default and palette colours are packed into
/// the id itself; only true colours, underline colours and payloads need an entry in the table. Entries are found
/// through open addressing and reclaimed by `collect`, when the owner has marked what its cells still use.
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

    static constexpr bool isInterned(Id id) { return (id & internedBit) != 0; }

    /// The id of an attribute that needs no entry, else nothing.
    static constexpr std::optional<Id> packed(const Attribute& a) {
        if (!a.underlineColor.isAbsent() || a.fg.kind >= Attribute::Color::Kind::trueColor ||
            a.bg.kind >= Attribute::Color::Kind::trueColor)
            return std::nullopt;
        return packedColor(a.fg) << fgShift | packedColor(a.bg) << bgShift | static_cast<Id>(a.style) << styleShift |
            static_cast<Id>(a.underlineStyle) << underlineShift;
    }

    /// True when enough entries have come since the last collection to make another one worth its walk.
    bool wantsCollection() const { return liveCount >= collectionThreshold; }
    std::size_t size() const { return liveCount; }

    /// Frees all entries whose mark is not set; `marks` is indexed by `indexOf` and may be shorter than the table.
    void collect(const std::vector<bool>& marks);
    static constexpr std::size_t indexOf(Id id) { return id & ~internedBit; }
    std::size_t capacity() const { return entries.size(); }

private:
    static constexpr Id internedBit = 0x80000000;
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
