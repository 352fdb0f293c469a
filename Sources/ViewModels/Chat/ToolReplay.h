#pragma once

#include <QJsonObject>
#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace Korvi {

// What a tool tells of itself while an answer is being written.
struct ToolFrame {
    enum class Kind { start, args, end };

    Kind kind = Kind::start;
    QString tool;
    std::optional<QJsonObject> content; // the arguments, or the result; may be absent of the latter

    std::uint64_t fingerprint() const; // the same in every run of the client
};

// Knows which frames of tools an answer has had: after a lost line the service sends them again in their order.
class ToolReplay {
public:
    // The answer may be sent again from its beginning.
    void begin() { m_next = 0; }
    // Whether the frame has been here before. A new one is remembered, and ends the replay.
    bool isRepeat(const ToolFrame& frame);
    // Of the first frame; 0 without one.
    std::uint64_t head() const { return m_seen.empty() ? 0 : m_seen.front(); }

private:
    std::vector<std::uint64_t> m_seen;
    std::size_t m_next = 0; // the one that a replay would repeat next
};

}
