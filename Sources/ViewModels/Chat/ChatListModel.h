#pragma once

#include "Chat.h"

#include <QAbstractListModel>
#include <QSet>
#include <QtQml/qqmlregistration.h>

namespace Korvi {

// The sidebar list, always sorted: favourites first, then the most recently used. Announces the rows that changed,
// moved, came or went, and no others.
class ChatListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("owned by ChatViewModel")
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Role {
        ChatIdRole = Qt::UserRole + 1, // "chatId", integer
        NameRole,                      // "name", string
        IsFavoriteRole,                // "isFavorite", bool
        UpdatedAtRole,                 // "updatedAt", string as the service gave it
        IsGeneratingRole,              // "isGenerating", bool: an answer is under way in it
    };
    Q_ENUM(Role)

    using QAbstractListModel::QAbstractListModel;

    int count() const { return static_cast<int>(m_chats.size()); }
    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    const std::vector<Chat>& chats() const { return m_chats; }
    const Chat* find(qint64 id) const; // null when there is none
    Q_INVOKABLE bool isFavorite(qint64 chatId) const;
    void setChats(std::vector<Chat> chats);
    // A chat that is already there is replaced, not doubled.
    void upsert(Chat chat);
    void remove(qint64 id); // all with that id
    void setGenerating(const QSet<qint64>& ids);

signals:
    void countChanged();

private:
    const Chat& at(int row) const { return m_chats[static_cast<std::size_t>(row)]; }
    void becomeStepwise(std::vector<Chat> chats);
    void moveTo(int from, int to);
    void replaceAt(int row, Chat chat);
    void removeAt(int row);

    std::vector<Chat> m_chats;
    QSet<qint64> m_generating;
};

}
