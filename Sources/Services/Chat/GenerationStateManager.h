#pragma once

#include "TaskScope.h"

#include <QDateTime>

#include <chrono>
#include <optional>

namespace Korvi {

class ChatService;
class Clock;
class Defaults;
class Scheduler;

// The question that was asked last, as long as its answer is not there.
struct PendingGeneration {
    qint64 chatId = -1;          // -1 until the service has made the chat
    QDateTime startedAt;         // UTC
    qint64 lastMessageCount = 0; // messages of the chat when it was asked; 0 for a new one
    QString type;                // "image", "video", "search" or "text"
    std::optional<QString> chatName;

    bool operator==(const PendingGeneration&) const = default;
};

// What became of it.
struct RecoveryResult {
    enum class Outcome {
        completed, // the answer is there
        failed,    // too old, or nobody could be asked
        nothingPending,
        resumed,         // its stream has gone on to its end meanwhile
        stillInProgress, // the service has nothing new yet
    };

    Outcome outcome = Outcome::nothingPending;
    qint64 messageCount = 0; // at the service, when completed
    QString reason = {};     // when failed

    bool operator==(const RecoveryResult&) const = default;
};

// Keeps one small record of the running generation in the settings store, and works out afterwards what became of it.
// Has no state of its own. A record that does not decode counts as absent.
class GenerationStateManager {
public:
    static constexpr auto userDefaultsKey = "com.korvihub.pendingGeneration";
    static constexpr auto staleThresholdSeconds = std::chrono::seconds(600);
    static constexpr auto reconnectWait = std::chrono::seconds(5);
    static constexpr auto replayWait = std::chrono::seconds(3);

    GenerationStateManager(Defaults& defaults, Clock& clock, Scheduler& scheduler)
        : m_defaults(defaults)
        , m_clock(clock)
        , m_scheduler(scheduler) {}

    void markStarted(qint64 chatId, qint64 messageCount, const QString& type, const std::optional<QString>& chatName);
    void markCompleted();
    std::optional<PendingGeneration> getPending() const;

    // Looks whether the stream goes on by itself, and asks the service otherwise.
    Task<RecoveryResult> recoverIfNeeded(ChatService& chatService);

private:
    Defaults& m_defaults;
    Clock& m_clock;
    Scheduler& m_scheduler;
};

}
