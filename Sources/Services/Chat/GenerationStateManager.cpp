#include "Chat/GenerationStateManager.h"

#include "Backend/ErrorText.h"
#include "Chat/ChatService.h"
#include "Chat/StoredDate.h"
#include "Clock.h"
#include "Defaults.h"
#include "JsonReader.h"

#include <QLoggingCategory>

namespace Korvi {

using namespace Qt::Literals;

Q_LOGGING_CATEGORY(lcGenerationState, "korvi.chat.generation", QtInfoMsg)

namespace {

using Outcome = RecoveryResult::Outcome;

const auto recordKey = QString::fromLatin1(GenerationStateManager::userDefaultsKey);

PendingGeneration fromJson(const JsonReader& json) {
    return {.chatId = json.integer("chatId"_L1),
        .startedAt = StoredDate::fromSeconds(json.number("startedAt"_L1)),
        .lastMessageCount = json.integer("lastMessageCount"_L1),
        .type = json.string("type"_L1),
        .chatName = json.optionalString("chatName"_L1)};
}

}

void GenerationStateManager::markStarted(
    qint64 chatId, qint64 messageCount, const QString& type, const std::optional<QString>& chatName) {
    QJsonObject record{{"chatId"_L1, chatId}, {"startedAt"_L1, StoredDate::toSeconds(m_clock.now())},
        {"lastMessageCount"_L1, messageCount}, {"type"_L1, type}};
    insertIfPresent(record, "chatName"_L1, chatName);
    m_defaults.setData(recordKey, QJsonDocument(record).toJson(QJsonDocument::Compact));
    qCInfo(lcGenerationState).noquote().nospace()
        << "📌 [GenerationState] Marked started: chatId=" << chatId << ", count=" << messageCount << ", type=" << type;
}

void GenerationStateManager::markCompleted() {
    m_defaults.remove(recordKey);
    qCInfo(lcGenerationState) << "📌 [GenerationState] Marked completed";
}

std::optional<PendingGeneration> GenerationStateManager::getPending() const {
    const auto bytes = m_defaults.data(recordKey);
    if (!bytes)
        return std::nullopt;
    try {
        return fromJson(JsonReader(QJsonDocument::fromJson(*bytes).object()));
    } catch (const DecodingError&) {
        return std::nullopt;
    }
}

Task<RecoveryResult> GenerationStateManager::recoverIfNeeded(ChatService& chatService) {
    const auto record = getPending();
    if (!record)
        co_return RecoveryResult{.outcome = Outcome::nothingPending};
    const auto age = std::chrono::milliseconds(record->startedAt.msecsTo(m_clock.now()));
    qCInfo(lcGenerationState).noquote().nospace()
        << "🔄 [GenerationState] Recovery check: chatId=" << record->chatId << ", type=" << record->type
        << ", age=" << std::chrono::duration_cast<std::chrono::seconds>(age).count() << "s";
    if (age > staleThresholdSeconds) {
        qCInfo(lcGenerationState) << "🔄 [GenerationState] Stale generation (>10min), clearing";
        markCompleted();
        co_return RecoveryResult{.outcome = Outcome::failed, .reason = u"Generation timed out"_s};
    }

    const bool wasConnected = chatService.isConnected();
    if (wasConnected) {
        qCInfo(lcGenerationState) << "🔄 [GenerationState] WebSocket connected, waiting 3s for replay...";
    } else {
        qCInfo(lcGenerationState) << "🔄 [GenerationState] WebSocket not connected, attempting reconnect...";
        co_await chatService.reconnectAndWait();
    }
    const auto wait = wasConnected ? replayWait : reconnectWait;
    co_await m_scheduler.sleep(wait);
    if (!getPending()) {
        qCInfo(lcGenerationState) << (wasConnected ? "🔄 [GenerationState] Stream resumed via WebSocket replay"
                                                   : "🔄 [GenerationState] Stream resumed after reconnect");
        co_return RecoveryResult{.outcome = Outcome::resumed};
    }

    qCInfo(lcGenerationState) << "🔄 [GenerationState] No WebSocket replay, trying REST fallback...";
    // A chat that the service has not told of has no messages that could be asked for.
    if (record->chatId < 0)
        co_return RecoveryResult{.outcome = Outcome::stillInProgress};
    try {
        const std::vector<ChatMessage> messages = co_await chatService.getMessages(record->chatId);
        const auto count = std::ssize(messages);
        if (count <= record->lastMessageCount) {
            qCInfo(lcGenerationState).nospace()
                << "🔄 [GenerationState] Same message count (" << count << "), still in progress";
            co_return RecoveryResult{.outcome = Outcome::stillInProgress};
        }
        qCInfo(lcGenerationState) << "🔄 [GenerationState] Server has" << count << "vs" << record->lastMessageCount
                                  << "local - completed while away!";
        markCompleted();
        co_return RecoveryResult{.outcome = Outcome::completed, .messageCount = count};
    } catch (const TaskCancelled&) {
        throw;
    } catch (const std::exception& error) {
        const QString reason = errorText(error);
        qCWarning(lcGenerationState).noquote() << "❌ [GenerationState] REST fallback failed:" << reason;
        co_return RecoveryResult{.outcome = Outcome::failed, .reason = reason};
    }
}

}
