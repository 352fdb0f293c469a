#include "Chat/ChatDirectory.h"

#include "Cache/DataCacheManager.h"
#include "Chat/ChatService.h"
#include "NotificationCenter.h"

#include <QLoggingCategory>

#include <span>

namespace Korvi {

Q_LOGGING_CATEGORY(lcChats, "korvi.chat.list", QtInfoMsg)

namespace {

constexpr std::size_t prefetchedChats = 5;

}

ChatDirectory::ChatDirectory(Dependencies dependencies, QObject* parent)
    : QObject(parent)
    , m_dependencies(dependencies) {}

void ChatDirectory::loadCached() {
    if (auto chats = m_dependencies.cache.getCachedChats())
        m_chats.setChats(std::move(*chats));
}

Task<void> ChatDirectory::load() {
    const QString organization = m_dependencies.cache.currentOrgSuffix();
    try {
        std::vector<Chat> chats = co_await m_dependencies.chatService.getChats();
        if (organization != m_dependencies.cache.currentOrgSuffix())
            co_return; // of the former one
        m_isOutdated = false;
        m_chats.setChats(std::move(chats));
        m_dependencies.cache.cacheChats(m_chats.chats());
        for (const Chat& chat : m_chats.chats())
            emit chatChanged(chat);
    } catch (const TaskCancelled&) {
        throw;
    } catch (const std::exception& error) {
        qCWarning(lcChats).noquote() << "❌ [ChatViewModel] Error loading chats:" << error.what();
        m_isOutdated = organization == m_dependencies.cache.currentOrgSuffix();
    }
}

void ChatDirectory::add(const Chat& chat) {
    store(chat);
}

void ChatDirectory::touch(qint64 chatId, QString updatedAt) {
    if (const Chat* known = m_chats.find(chatId)) {
        Chat chat = *known;
        chat.updatedAt = std::move(updatedAt);
        m_chats.upsert(std::move(chat));
    }
}

Task<void> ChatDirectory::toggleFavorite(qint64 chatId) {
    const Chat* known = m_chats.find(chatId);
    if (!known)
        co_return;
    const bool isFavorite = !known->isFavorite.value_or(false);
    try {
        const Chat chat = co_await m_dependencies.chatService.setFavorite(chatId, isFavorite);
        replace(chat);
    } catch (const TaskCancelled&) {
        throw;
    } catch (const std::exception& error) {
        qCWarning(lcChats).noquote() << "❌ [ChatViewModel] Failed to toggle favorite for chat" << chatId
                                     << error.what();
    }
}

Task<void> ChatDirectory::rename(qint64 chatId, QString newName) {
    try {
        const Chat chat = co_await m_dependencies.chatService.renameChat(chatId, newName);
        replace(chat);
    } catch (const TaskCancelled&) {
        throw;
    } catch (const std::exception& error) {
        qCWarning(lcChats).noquote() << "❌ [ChatViewModel] Error renaming chat:" << error.what();
    }
}

Task<void> ChatDirectory::remove(qint64 chatId) {
    try {
        co_await m_dependencies.chatService.deleteChat(chatId);
        m_chats.remove(chatId);
        m_dependencies.cache.removeChat(chatId);
        emit chatRemoved(chatId);
        emit m_dependencies.notifications.projectChatDeleted(chatId);
        qCInfo(lcChats) << "✅ [ChatViewModel] Chat deleted:" << chatId;
    } catch (const TaskCancelled&) {
        throw;
    } catch (const std::exception& error) {
        qCWarning(lcChats).noquote() << "❌ [ChatViewModel] Error deleting chat:" << error.what();
    }
}

std::vector<qint64> ChatDirectory::staleChats(const QDateTime& now) const {
    std::vector<qint64> ids;
    const auto& chats = m_chats.chats();
    for (const Chat& chat : std::span(chats).first(std::min(prefetchedChats, chats.size()))) {
        const QDateTime fetched = m_dependencies.cache.messagesLastFetch.value(chat.id);
        const auto age = std::chrono::milliseconds(fetched.isValid() ? fetched.msecsTo(now) : 0);
        if (!fetched.isValid() || age > DataCacheManager::cacheTTL)
            ids.push_back(chat.id);
    }
    return ids;
}

void ChatDirectory::clear() {
    m_isOutdated = false;
    m_chats.setChats({});
}

// It may have been deleted meanwhile.
void ChatDirectory::replace(const Chat& chat) {
    if (m_chats.find(chat.id))
        store(chat);
}

void ChatDirectory::store(const Chat& chat) {
    m_chats.upsert(chat);
    m_dependencies.cache.cacheChats(m_chats.chats());
    emit chatChanged(chat);
}

}
