#include "Chat/MessageLoader.h"

#include "Backend/APIError.h"
#include "Chat/ChatService.h"

#include <QLoggingCategory>
#include <QScopeGuard>

namespace Korvi {

Q_LOGGING_CATEGORY(lcMessages, "korvi.chat.messages", QtInfoMsg)

MessageLoader::MessageLoader(ChatService& chatService, Scheduler& scheduler)
    : m_chatService(chatService)
    , m_scheduler(scheduler) {}

void MessageLoader::load(qint64 chatId) {
    m_scope.start([this, chatId] { return loadNow(chatId); });
}

Task<void> MessageLoader::loadNow(qint64 chatId) {
    if (m_loading.contains(chatId))
        co_return;
    m_loading.insert(chatId);
    const quint64 epoch = m_epoch;
    const auto done = qScopeGuard([&] {
        if (epoch == m_epoch)
            m_loading.remove(chatId);
    });
    std::vector<ChatMessage> messages;
    try {
        do {
            m_outdated.remove(chatId);
            messages = co_await m_chatService.getMessages(chatId);
            if (epoch != m_epoch)
                co_return;
        } while (m_outdated.contains(chatId));
    } catch (const TaskCancelled&) {
        throw;
    } catch (const std::exception& error) {
        qCWarning(lcMessages).noquote() << "❌ [ChatViewModel] Error loading messages:" << error.what();
        if (epoch != m_epoch)
            co_return;
        m_loading.remove(chatId);
        const auto* apiError = dynamic_cast<const APIError*>(&error);
        const auto* answer = apiError ? apiError->asServerError() : nullptr;
        emit failed(chatId, answer && answer->status == 404);
        co_return;
    }
    m_loading.remove(chatId); // a listener may ask for it again
    emit loaded(chatId, messages);
}

bool MessageLoader::loadLater(qint64 chatId) {
    Repeat& repeat = m_repeats[chatId];
    if (repeat.timer.isActive())
        return true;
    if (repeat.count == maxRepeats) {
        m_repeats.erase(chatId);
        return false;
    }
    repeat.timer = m_scheduler.after(firstDelay * (1 << repeat.count++), [this, chatId] { load(chatId); });
    return true;
}

void MessageLoader::touch(qint64 chatId) {
    m_repeats.erase(chatId);
    if (m_loading.contains(chatId))
        m_outdated.insert(chatId);
}

void MessageLoader::clear() {
    m_scope.cancel();
    ++m_epoch;
    m_loading.clear();
    m_outdated.clear();
    m_repeats.clear();
}

}
