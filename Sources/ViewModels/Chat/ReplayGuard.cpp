#include "Chat/ReplayGuard.h"

#include <algorithm>
#include <utility>

namespace Korvi {

void ReplayGuard::ended(Ended answer) {
    m_recent.push_back(std::move(answer));
}

void ReplayGuard::connected(const QDateTime& now) {
    while (!m_recent.empty() && m_recent.front().at.secsTo(now) > replayLife.count())
        m_recent.pop_front();
    m_isWatching = !m_recent.empty();
    m_isInReplay = false;
    m_next = 0;
    m_mayBeRepeated = m_recent.size();
}

// Answers are repeated in their order and before anything else. What is not repeated to a connection is never
// repeated again, and an answer that begins like it must not be taken for it. One without a word could not be told.
void ReplayGuard::noneIsRepeated() {
    m_isWatching = false;
    const auto end = m_recent.begin() + static_cast<std::ptrdiff_t>(std::exchange(m_mayBeRepeated, 0));
    const bool areKnown = std::all_of(m_recent.begin(), end,
        [](const Ended& answer) { return !answer.textHead.isEmpty() || !answer.thinkingTail.isEmpty(); });
    if (!areKnown || m_next > 0)
        return;
    m_recent.erase(m_recent.begin(), end);
}

void ReplayGuard::watch() {
    m_isWatching = m_next < m_recent.size();
}

void ReplayGuard::swallowOne() {
    m_isWatching = true;
    m_isInReplay = true;
    m_next = m_recent.size();
}

void ReplayGuard::clear() {
    m_recent.clear();
    m_mayBeRepeated = 0;
    m_isWatching = false;
    m_isInReplay = false;
}

bool ReplayGuard::begins(const std::function<bool(const Ended&)>& holds) {
    const auto owner = std::find_if(m_recent.begin() + static_cast<std::ptrdiff_t>(m_next), m_recent.end(), holds);
    m_isInReplay = owner != m_recent.end();
    if (m_isInReplay)
        m_next = static_cast<std::size_t>(owner - m_recent.begin());
    else
        noneIsRepeated();
    return m_isInReplay;
}

bool ReplayGuard::ownsCreation(qint64 chatId) {
    return m_isWatching && begins([chatId](const Ended& answer) { return answer.chatId == chatId; });
}

bool ReplayGuard::ownsPiece(const QString& piece, AnswerFold::Kind kind) {
    if (!m_isWatching || m_isInReplay)
        return m_isWatching;
    // Text comes from its beginning; of the reasoning, only what had not been confirmed.
    return begins([&](const Ended& answer) {
        if (kind == AnswerFold::Kind::thinking)
            return answer.thinkingTail.contains(piece);
        const QString& head = answer.textHead;
        return !head.isEmpty() && (head.startsWith(piece) || piece.startsWith(head));
    });
}

bool ReplayGuard::ownsTool(quint64 fingerprint) {
    if (!m_isWatching || m_isInReplay)
        return m_isWatching;
    return begins([fingerprint](const Ended& answer) { return answer.toolHead == fingerprint; });
}

bool ReplayGuard::ownsEnd(bool isBareEndExpected) {
    if (!m_isWatching)
        return false;
    if (!m_isInReplay) {
        // An answer without a word leaves only its end to be repeated.
        const auto owner = std::find_if(m_recent.begin() + static_cast<std::ptrdiff_t>(m_next), m_recent.end(),
            [](const Ended& answer) { return answer.textHead.isEmpty() && answer.toolHead == 0; });
        if (owner == m_recent.end() || isBareEndExpected) {
            m_isWatching = false;
            return false;
        }
        m_next = static_cast<std::size_t>(owner - m_recent.begin());
    }
    m_isInReplay = false;
    m_mayBeRepeated = 0;
    ++m_next;
    m_isWatching = m_next < m_recent.size();
    return true;
}

}
