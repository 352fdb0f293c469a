#pragma once

#include <QString>

#include <unordered_map>

namespace Korvi::Markdown {

// Remembers what became of up to `capacity` texts; when one more comes, it starts anew. Very long texts are not kept:
// a full cache of them would be more memory than all else. For the main thread.
template <class Value, std::size_t capacity>
class TextCache {
public:
    template <class Make>
    Value value(const QString& text, Make make) {
        const std::size_t hash = qHash(text);
        const auto entry = entries.find(hash);
        // Another text may have the same hash.
        if (entry != entries.end() && entry->second.text == text)
            return entry->second.value;
        Value made = make();
        if (text.size() > longest)
            return made;
        if (entries.size() >= capacity && entry == entries.end())
            entries.clear();
        entries.insert_or_assign(hash, Entry{text, made});
        return made;
    }

private:
    static constexpr qsizetype longest = 65'536;
    struct Entry {
        QString text;
        Value value;
    };
    std::unordered_map<std::size_t, Entry> entries;
};

}
