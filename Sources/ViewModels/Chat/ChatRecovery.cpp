// What ChatViewModel remembers of the running answer, and how it finds out what became of it.
#include "Chat/ChatService.h"
#include "Chat/ChatViewModel.h"
#include "Chat/MessageComposition.h"

#include <QLoggingCategory>

namespace Korvi {

using namespace Qt::Literals;

Q_LOGGING_CATEGORY(lcRecovery, "korvi.chat.recovery", QtInfoMsg)

void ChatViewModel::noteQuestion(const QString& text, bool hasImage) {
    const QString type = MessageComposition::detectGenerationType(text, hasImage);
    m_recordedChatId = activeChatId();
    if (m_activeChat)
        m_generationState.markStarted(m_activeChat->id, m_messages.count(), type, m_activeChat->name);
    else
        m_generationState.markStarted(-1, 0, type, std::nullopt);
}

void ChatViewModel::endGenerationRecord() {
    m_recordedChatId.reset();
    m_generationState.markCompleted();
    emit generationEnded();
}

QString ChatViewModel::nameOf(qint64 chatId) const {
    const Chat* chat = m_directory.find(chatId);
    return chat ? chat->name : QString();
}

void ChatViewModel::toolStateChanged() {
    const ToolWork* work = m_stream.openTools();
    const ToolState now = work ? static_cast<const ToolState&>(*work) : ToolState();
    if (now == m_tools)
        return;
    m_tools = now;
    emit toolsChanged();
}

void ChatViewModel::filesUploaded(quint64 serial, const AttachmentUploader::Uploaded& uploaded) {
    QHash<QString, QString> places;
    for (const ChatFileAttachment& attachment : uploaded.attachments) {
        if (attachment.localURL && attachment.remoteURL)
            places.insert(attachment.localURL->toString(), *attachment.remoteURL);
    }
    const bool isBare = uploaded.imageUrls.isEmpty() && uploaded.fileUrls.empty();
    if (isBare && !m_stream.hasText(serial))
        return m_stream.withdraw(serial);
    // The message shows its first image only: one would never learn that another one is missing.
    bool isFirst = true;
    for (const ChatFileAttachment& attachment : uploaded.attachments) {
        if (attachment.category != FileTypeCategory::image)
            continue;
        if (!isFirst && attachment.uploadError)
            attachments()->giveBack({attachment});
        isFirst = false;
    }
    m_stream.supply(serial, uploaded.imageUrls, uploaded.fileUrls, places);
}

void ChatViewModel::recoverFromBackground() {
    if (m_isRecovering) {
        qCInfo(lcRecovery) << "🔄 [ChatViewModel] Recovery already in progress, skipping";
        return;
    }
    m_scope.start([this] { return recover(); });
}

Task<void> ChatViewModel::recover() {
    struct Recovering {
        ChatViewModel& chat;
        explicit Recovering(ChatViewModel& viewModel)
            : chat(viewModel) {
            chat.m_isRecovering = true;
        }
        ~Recovering() { chat.m_isRecovering = false; }
    };
    const auto record = m_generationState.getPending();
    const Recovering recovering(*this);
    const RecoveryResult result = co_await m_generationState.recoverIfNeeded(m_dependencies.chatService);
    const qint64 target = record ? record->chatId : activeChatId();
    switch (result.outcome) {
    case RecoveryResult::Outcome::completed:
        qCInfo(lcRecovery) << "🔄 [ChatViewModel] Generation completed while away, fetching messages...";
        // Whether it is the answer that is waited for, the stream finds out.
        m_stream.lookAgain(target);
        if (target == activeChatId()) {
            m_restoresArtifactOf = target;
            m_loader.load(target);
        } else {
            const QString known = nameOf(target);
            setCompletedInOtherChat(std::pair(target, record->chatName.value_or(known.isEmpty() ? u"Chat"_s : known)));
            qCInfo(lcRecovery) << "📢 [ChatViewModel] Generation completed in different chat:" << target;
        }
        if (!m_stream.isRunning(target))
            m_recordedChatId.reset();
        break;
    case RecoveryResult::Outcome::failed:
        qCWarning(lcRecovery).noquote() << "❌ [ChatViewModel] Recovery failed:" << result.reason;
        // Only what is too old is not waited for any more. While nobody can be asked, the answer may still be growing.
        if (!m_generationState.getPending())
            m_stream.giveUp(target);
        break;
    case RecoveryResult::Outcome::resumed:
    case RecoveryResult::Outcome::stillInProgress:
        qCInfo(lcRecovery) << "🔄 [ChatViewModel] Recovery: the answer is left to its stream";
        break;
    case RecoveryResult::Outcome::nothingPending: break;
    }
}

void ChatViewModel::setCompletedInOtherChat(std::optional<std::pair<qint64, QString>> chat) {
    m_completedTimer.cancel();
    if (chat)
        m_completedTimer =
            m_dependencies.scheduler.after(completedTime, [this] { setCompletedInOtherChat(std::nullopt); });
    if (m_completedInOtherChat == chat)
        return;
    m_completedInOtherChat = std::move(chat);
    emit completedInOtherChatChanged();
}

}
