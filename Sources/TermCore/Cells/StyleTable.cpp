#include "Cells/StyleTable.h"

#include <algorithm>

namespace termcore {

Attribute::Color StyleTable::unpackedColor(Id field) {
    if (field >= 2)
        return Attribute::Color::ansi256(static_cast<std::uint8_t>(field - 2));
    return field == 1 ? Attribute::Color::defaultInvertedColor() : Attribute::Color::defaultColor();
}

Attribute StyleTable::attributeOf(Id id) const {
    if (isInterned(id))
        return entries[indexOf(id)].attribute;
    Attribute result;
    if (const Id kind = id & kindMask; kind != 0) {
        (kind == foregroundKind ? result.fg : result.bg) = Attribute::Color::trueColor(
            static_cast<std::uint8_t>(id >> 16), static_cast<std::uint8_t>(id >> 8), static_cast<std::uint8_t>(id));
        for (unsigned i = 0; i < shortStyleCount; ++i) {
            if ((id >> (shortStyleShift + i) & 1) != 0)
                result.style |= shortStyles[i];
        }
        if (contains(result.style, CharacterStyle::underline))
            result.underlineStyle = UnderlineStyle::single;
        return result;
    }
    result.fg = unpackedColor(id >> fgShift & 0x1FF);
    result.bg = unpackedColor(id >> bgShift & 0x1FF);
    result.style = static_cast<CharacterStyle>(id >> styleShift & 0xFF);
    result.underlineStyle = static_cast<UnderlineStyle>(id >> underlineShift & 7);
    return result;
}

std::size_t StyleTable::hashOf(const Entry& entry) {
    return std::hash<Attribute>{}(entry.attribute) ^ (entry.payload.code * std::size_t{0x9E3779B1});
}

StyleTable::Id StyleTable::intern(const Attribute& attribute, TinyAtom payload) {
    if (buckets.size() < (liveCount + 1) * 2)
        rebuildBuckets(std::max<std::size_t>(256, buckets.size() * 2));
    const Entry entry{attribute, payload};
    const std::size_t mask = buckets.size() - 1;
    std::size_t bucket = hashOf(entry) & mask;
    while (buckets[bucket] != 0) {
        const std::uint32_t index = buckets[bucket] - 1;
        if (entries[index] == entry)
            return index | internedKind;
        bucket = (bucket + 1) & mask;
    }
    std::uint32_t index = 0;
    if (freeIndices.empty()) {
        index = static_cast<std::uint32_t>(entries.size());
        entries.push_back(entry);
        used.push_back(true);
    } else {
        index = freeIndices.back();
        freeIndices.pop_back();
        entries[index] = entry;
        used[index] = true;
    }
    buckets[bucket] = index + 1;
    ++liveCount;
    return index | internedKind;
}

void StyleTable::rebuildBuckets(std::size_t bucketCount) {
    buckets.assign(bucketCount, 0);
    const std::size_t mask = bucketCount - 1;
    for (std::size_t index = 0; index < entries.size(); ++index) {
        if (!used[index])
            continue;
        std::size_t bucket = hashOf(entries[index]) & mask;
        while (buckets[bucket] != 0)
            bucket = (bucket + 1) & mask;
        buckets[bucket] = static_cast<std::uint32_t>(index) + 1;
    }
}

void StyleTable::collect(const std::vector<bool>& marks) {
    for (std::size_t index = 0; index < entries.size(); ++index) {
        if (!used[index] || (index < marks.size() && marks[index]))
            continue;
        used[index] = false;
        freeIndices.push_back(static_cast<std::uint32_t>(index));
        --liveCount;
    }
    rebuildBuckets(std::max<std::size_t>(256, buckets.size()));
    collectionThreshold = std::max(initialThreshold, liveCount * 2);
}

}
