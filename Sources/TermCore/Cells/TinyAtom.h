#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

namespace termcore {

/// A 16-bit handle to a value that many cells share: a hyperlink. One dictionary serves the whole process, without a
/// lock: all terminals run on one thread. Handle 0 means "none".
struct TinyAtom {
    std::uint16_t code = 0;

    static constexpr std::uint16_t maximumCode = 65534;

    /// Stores `value` under the next handle; nothing when the handles are used up. Handles are not reused.
    static std::optional<TinyAtom> lookup(std::string value);
    static void release(std::uint16_t code);

    /// The stored value, or null.
    const std::string* target() const;

    static std::unordered_map<std::uint16_t, std::string>& map();
    static std::uint16_t lastUsed;

    bool operator==(const TinyAtom&) const = default;
};

}
