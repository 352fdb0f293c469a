#pragma once

#include <cstddef>
#include <list>
#include <utility>

namespace Korvi {

// The entries used last, at most `limit` of them. Small: it is searched in order.
template <class Key, class Value>
class MemoryCache {
public:
    explicit MemoryCache(std::size_t limit)
        : m_limit(limit) {}

    // Null when it is not there. Valid until the next change.
    const Value* find(const Key& key) {
        for (auto it = m_entries.begin(); it != m_entries.end(); ++it) {
            if (it->first == key) {
                m_entries.splice(m_entries.begin(), m_entries, it);
                return &m_entries.front().second;
            }
        }
        return nullptr;
    }

    void insert(const Key& key, Value value) {
        m_entries.remove_if([&](const auto& entry) { return entry.first == key; });
        m_entries.emplace_front(key, std::move(value));
        if (m_entries.size() > m_limit)
            m_entries.pop_back();
    }

    void clear() { m_entries.clear(); }

private:
    std::size_t m_limit;
    std::list<std::pair<Key, Value>> m_entries; // the one used last in front
};

}
