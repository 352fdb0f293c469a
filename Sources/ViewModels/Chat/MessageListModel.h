#pragma once

#include "ChatMessage.h"

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

#include <functional>

namespace Korvi {

// The messages of the open conversation, oldest first. Announces exactly the rows that changed.
class MessageListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("owned by ChatViewModel")
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Role {
        MessageIdRole = Qt::UserRole + 1, // "messageId", integer
        IsUserRole,                       // "isUser", bool: false for answers
        TextRole,                         // "text", string: all text blocks, without the reasoning
        ThinkingRole,                     // "thinking", string: the reasoning, empty without one
        IsStreamingRole,                  // "isStreaming", bool: the answer is still growing
        QuestionRole,                     // "question", string: what the user wrote; empty for answers
        ContentRole,                      // "content", MessageHandle: all blocks, to be read in place
        KeyRole,                          // "key", integer: stays when a reload gives the message another id
    };
    Q_ENUM(Role)

    using QAbstractListModel::QAbstractListModel;

    int count() const { return static_cast<int>(m_messages.size()); }
    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    const std::vector<ChatMessage>& messages() const { return m_messages; }
    // Rows that stay equal are not announced: a reload with the same content draws nothing.
    void setMessages(std::vector<ChatMessage> messages);
    // Another conversation: all rows are new.
    void reset(std::vector<ChatMessage> messages);
    void append(std::vector<ChatMessage> messages);
    // `row` must exist.
    void replace(int row, ChatMessage message);
    // Changes a message in place; `change` says whether it did.
    void update(int row, const std::function<bool(ChatMessage&)>& change);
    void remove(int row);
    void setStreaming(bool streaming); // marks the last row

signals:
    void countChanged();

private:
    void announce(int row, const QList<int>& roles = {});

    std::vector<ChatMessage> m_messages;
    QHash<qint64, qint64> m_keys; // by id, of those that had another one before
    quint64 m_revision = 0;       // of the content
    bool m_streaming = false;
};

}
