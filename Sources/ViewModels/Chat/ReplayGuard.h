#pragma once

#include "Chat/AnswerFold.h"

#include <QDateTime>

#include <deque>
#include <functional>

namespace Korvi {

// Knows the answers that have ended lately. When the line was lost before the service heard that an answer's end had
// arrived, it sends that answer again: those frames are nobody's, and would be taken for the next answer's.
class ReplayGuard {
public:
    struct Ended {
        qint64 chatId = -1;
        QString textHead = {};     // as much of its text as tells it from others; empty for an answer without text
        QString thinkingTail = {}; // the end of its reasoning
        QDateTime at = {};         // UTC
        quint64 toolHead = 0;      // the fingerprint of the first thing that a tool told; 0 when none did

        bool operator==(const Ended&) const = default;
    };

    // How long the service keeps an answer for a client that is away.
    static constexpr auto replayLife = std::chrono::seconds(120);

    static constexpr qsizetype headLength = 64;
    static constexpr qsizetype tailLength = 4096;

    void ended(Ended answer);
    void connected(const QDateTime& now);
    // Nothing has come for a while: what comes from now on is not a replay.
    void relax() { m_isWatching = m_isWatching && m_isInReplay; }
    void watch();      // frames of an answer that has ended may still come
    void swallowOne(); // a replay has begun of an answer that is not known any more
    void clear();

    // Whether the frame is of an answer that has ended already. Frames come in order: once one is not, none is until
    // the next connection.
    bool ownsCreation(qint64 chatId);
    bool ownsPiece(const QString& piece, AnswerFold::Kind kind);
    bool ownsTool(quint64 fingerprint);
    // `isBareEndExpected`: of the answer that is waited for, nothing but its end is missing.
    bool ownsEnd(bool isBareEndExpected);
    bool isWatching() const { return m_isWatching; }

    const std::deque<Ended>& recent() const { return m_recent; }

private:
    // Whether a replay begins, of the first of the answers left for which that holds.
    bool begins(const std::function<bool(const Ended&)>& holds);
    void noneIsRepeated();

    std::deque<Ended> m_recent; // in the order of their ends
    bool m_isWatching = false;  // a replay may come
    bool m_isInReplay = false;  // of m_recent[m_next]
    std::size_t m_next = 0;
    std::size_t m_mayBeRepeated = 0; // of m_recent, until the first frame on a connection tells
};

}
