#include "Chat/ChatRecovery.h"

#include "Chat/AnswerStream.h"

#include <QLoggingCategory>
#include <QScopeGuard>

namespace Korvi {

using namespace Qt::Literals;

Q_LOGGING_CATEGORY(lcRecovery, "korvi.chat.recovery", QtInfoMsg)

ChatRecovery::ChatRecovery(Dependencies dependencies, AnswerStream& stream, std::function<QString(qint64)> nameOf)
    : m_dependencies(dependencies)
    , m_stream(stream)
    , m_nameOf(std::move(nameOf))
    , m_record(dependencies.defaults, dependencies.clock, dependencies.scheduler) {}

void ChatRecovery::noteQuestion(qint64 chatId, qint64 messageCount, const QString& type) {
    m_followed.reset();
    if (chatId < 0)
        m_record.markStarted(-1, 0, type, std::nullopt);
    else
        m_record.markStarted(chatId, messageCount, type, m_nameOf(chatId));
}

void ChatRecovery::follow(quint64 serial) {
    m_followed = Followed{.serial = serial};
    streamChanged();
}

void ChatRecovery::restore() {
    const auto record = m_record.getPending();
    if (!record)
        return;
    // With a journal that knows nothing of it, it has ended.
    m_followed = Followed{.serial = m_stream.runningIn(record->chatId), .hasChat = record->chatId > 0};
    streamChanged();
}

void ChatRecovery::streamChanged() {
    if (!m_followed)
        return;
    const auto chatId = m_stream.chatOfRunning(m_followed->serial);
    if (!chatId) {
        m_followed.reset();
        m_record.markCompleted();
        emit generationEnded();
    } else if (*chatId > 0 && !std::exchange(m_followed->hasChat, true)) {
        const auto record = m_record.getPending();
        if (record && record->chatId < 0)
            m_record.markStarted(*chatId, record->lastMessageCount, record->type, m_nameOf(*chatId));
    }
}

void ChatRecovery::recover(std::function<qint64()> open) {
    if (m_isRecovering) {
        qCInfo(lcRecovery) << "🔄 [ChatViewModel] Recovery already in progress, skipping";
        return;
    }
    m_scope.start([this, open = std::move(open)] { return findOut(open); });
}

Task<void> ChatRecovery::findOut(std::function<qint64()> open) {
    const auto record = m_record.getPending();
    m_isRecovering = true;
    const auto done = qScopeGuard([this] { m_isRecovering = false; });
    const RecoveryResult result = co_await m_record.recoverIfNeeded(m_dependencies.chatService);
    const qint64 target = record ? record->chatId : open();
    switch (result.outcome) {
    case RecoveryResult::Outcome::completed:
        answerIsThere(target, open(), record ? record->chatName : std::nullopt);
        break;
    case RecoveryResult::Outcome::failed:
        qCWarning(lcRecovery).noquote() << "❌ [ChatViewModel] Recovery failed:" << result.reason;
        // Only what is too old is not waited for any more. While nobody can be asked, the answer may still be growing.
        if (!m_record.getPending())
            m_stream.giveUp(target);
        break;
    case RecoveryResult::Outcome::resumed:
    case RecoveryResult::Outcome::stillInProgress:
        qCInfo(lcRecovery) << "🔄 [ChatViewModel] Recovery: the answer is left to its stream";
        break;
    case RecoveryResult::Outcome::nothingPending: break;
    }
}

void ChatRecovery::answerIsThere(qint64 chatId, qint64 openChatId, const std::optional<QString>& chatName) {
    qCInfo(lcRecovery) << "🔄 [ChatViewModel] Generation completed while away, fetching messages...";
    // Whether it is the answer that is waited for, the stream finds out.
    m_stream.lookAgain(chatId);
    if (chatId == openChatId) {
        emit storedAnswerWanted(chatId);
    } else {
        const QString known = m_nameOf(chatId);
        setCompletedInOtherChat(
            Completed{.chatId = chatId, .chatName = chatName.value_or(known.isEmpty() ? u"Chat"_s : known)});
        qCInfo(lcRecovery) << "📢 [ChatViewModel] Generation completed in different chat:" << chatId;
    }
    if (m_followed && !m_stream.chatOfRunning(m_followed->serial))
        m_followed.reset();
}

void ChatRecovery::setCompletedInOtherChat(std::optional<Completed> completed) {
    m_completedTimer.cancel();
    if (completed)
        m_completedTimer =
            m_dependencies.scheduler.after(completedTime, [this] { setCompletedInOtherChat(std::nullopt); });
    if (m_completed == completed)
        return;
    m_completed = std::move(completed);
    emit completedInOtherChatChanged();
}

void ChatRecovery::reset() {
    m_scope.cancel();
    setCompletedInOtherChat(std::nullopt);
}

}
