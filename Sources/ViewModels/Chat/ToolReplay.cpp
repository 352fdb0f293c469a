#include "Chat/ToolReplay.h"

#include <QJsonDocument>

#include <algorithm>

namespace Korvi {

std::uint64_t ToolFrame::fingerprint() const {
    std::uint64_t hash = 14695981039346656037U; // FNV-1a
    const auto add = [&](const QByteArray& bytes) {
        for (const char byte : bytes)
            hash = (hash ^ static_cast<unsigned char>(byte)) * 1099511628211U;
        hash = (hash ^ 0x100U) * 1099511628211U;
    };
    add(QByteArray::number(static_cast<int>(kind)));
    add(tool.toUtf8());
    if (content)
        add(QJsonDocument(*content).toJson(QJsonDocument::Compact));
    return hash == 0 ? 1 : hash;
}

bool ToolReplay::isRepeat(const ToolFrame& frame) {
    const std::uint64_t fingerprint = frame.fingerprint();
    // Not only the next one: what is known to have arrived may be left out of a replay.
    const auto found = std::find(m_seen.begin() + static_cast<std::ptrdiff_t>(m_next), m_seen.end(), fingerprint);
    if (found != m_seen.end()) {
        m_next = static_cast<std::size_t>(found - m_seen.begin()) + 1;
        return true;
    }
    m_seen.push_back(fingerprint);
    m_next = m_seen.size();
    return false;
}

}
