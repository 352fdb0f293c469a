#pragma once

#include "Chat/ChatListModel.h"
#include "TaskScope.h"

#include <QProperty>

namespace Korvi {

class ChatService;
class DataCacheManager;
class NotificationCenter;

// The user's chats: as they were cached, as the service lists them, and what the user does to one of them. Nothing
// changes here before the service has agreed. What fails is logged and changes nothing.
class ChatDirectory : public QObject {
    Q_OBJECT

public:
    struct Dependencies {
        ChatService& chatService;
        DataCacheManager& cache;
        NotificationCenter& notifications;
    };

    explicit ChatDirectory(Dependencies dependencies, QObject* parent = nullptr);

    void loadCached();
    Task<void> load();
    bool isOutdated() const { return m_isOutdated; } // the last load has failed
    QBindable<bool> bindableIsOutdated() { return &m_isOutdated; }
    void add(const Chat& chat);                   // created just now
    void touch(qint64 chatId, QString updatedAt); // used just now
    Task<void> toggleFavorite(qint64 chatId);
    Task<void> rename(qint64 chatId, QString newName);
    Task<void> remove(qint64 chatId);
    // Those of the first five chats whose messages were not fetched lately.
    std::vector<qint64> staleChats(const QDateTime& now) const;
    void clear(); // from the screen, not from the cache

    ChatListModel* model() { return &m_chats; }
    const Chat* find(qint64 id) const { return m_chats.find(id); }

signals:
    void chatChanged(const Korvi::Chat& chat);
    void chatRemoved(qint64 chatId);
    void isOutdatedChanged();

private:
    void replace(const Chat& chat);
    void store(const Chat& chat);

    Dependencies m_dependencies;
    ChatListModel m_chats;
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(ChatDirectory, bool, m_isOutdated, false, &ChatDirectory::isOutdatedChanged)
};

}
