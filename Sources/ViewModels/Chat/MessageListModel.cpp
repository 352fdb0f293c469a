#include "Chat/MessageListModel.h"

#include "Chat/MessageHandle.h"

namespace Korvi {

namespace {

template <class Block>
QString joined(const ChatMessage& message) {
    QStringList parts;
    for (const MessageContent& block : message.content.value_or(std::vector<MessageContent>())) {
        if (const auto* part = block.as<Block>(); part && !part->text.isEmpty())
            parts.append(part->text);
    }
    return parts.join(u'\n');
}

// As stored and as it came; one that was stopped may have ended elsewhere.
bool isSame(const ChatMessage& one, const ChatMessage& other) {
    const auto isUser = [](const ChatMessage& message) { return message.role == ChatMessage::Role::user; };
    const QString text = one.text();
    const QString otherText = other.text();
    return isUser(one) == isUser(other) && (text.startsWith(otherText) || otherText.startsWith(text));
}

}

int MessageListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant MessageListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= count())
        return {};
    const ChatMessage& message = m_messages[static_cast<std::size_t>(index.row())];
    switch (role) {
    case MessageIdRole: return message.id;
    case IsUserRole: return message.role == ChatMessage::Role::user;
    case TextRole: return joined<MessageContent::Text>(message);
    case ThinkingRole: return joined<MessageContent::Thinking>(message);
    case IsStreamingRole: return m_streaming && index.row() == count() - 1;
    case QuestionRole:
        return message.role == ChatMessage::Role::user ? joined<MessageContent::Text>(message) : QString();
    case KeyRole: return m_keys.value(message.id, message.id);
    case ContentRole: return QVariant::fromValue(MessageHandle(*this, index.row(), m_revision));
    default: return {};
    }
}

void MessageListModel::announce(int row, const QList<int>& roles) {
    ++m_revision;
    emit dataChanged(index(row), index(row), roles);
}

QHash<int, QByteArray> MessageListModel::roleNames() const {
    return {
        {MessageIdRole, "messageId"},
        {IsUserRole, "isUser"},
        {TextRole, "text"},
        {ThinkingRole, "thinking"},
        {IsStreamingRole, "isStreaming"},
        {QuestionRole, "question"},
        {ContentRole, "content"},
        {KeyRole, "key"},
    };
}

void MessageListModel::setMessages(std::vector<ChatMessage> messages) {
    const int common = std::min(count(), static_cast<int>(messages.size()));
    for (int row = 0; row < common; ++row) {
        const ChatMessage& old = m_messages[static_cast<std::size_t>(row)];
        const ChatMessage& message = messages[static_cast<std::size_t>(row)];
        if (old.id != message.id && isSame(old, message))
            m_keys.insert(message.id, m_keys.value(old.id, old.id));
        replace(row, message);
    }
    if (count() > common) {
        beginRemoveRows({}, common, count() - 1);
        m_messages.resize(static_cast<std::size_t>(common));
        endRemoveRows();
        emit countChanged();
    }
    messages.erase(messages.begin(), messages.begin() + common);
    append(std::move(messages));
}

void MessageListModel::reset(std::vector<ChatMessage> messages) {
    const int before = count();
    beginResetModel();
    m_messages = std::move(messages);
    endResetModel();
    if (count() != before)
        emit countChanged();
}

void MessageListModel::append(std::vector<ChatMessage> messages) {
    if (messages.empty())
        return;
    beginInsertRows({}, count(), count() + static_cast<int>(messages.size()) - 1);
    std::move(messages.begin(), messages.end(), std::back_inserter(m_messages));
    endInsertRows();
    emit countChanged();
}

void MessageListModel::replace(int row, ChatMessage message) {
    ChatMessage& old = m_messages[static_cast<std::size_t>(row)];
    if (old == message)
        return;
    old = std::move(message);
    announce(row);
}

void MessageListModel::update(int row, const std::function<bool(ChatMessage&)>& change) {
    if (change(m_messages[static_cast<std::size_t>(row)]))
        announce(row, {TextRole, ThinkingRole, QuestionRole, ContentRole});
}

void MessageListModel::remove(int row) {
    beginRemoveRows({}, row, row);
    m_messages.erase(m_messages.begin() + row);
    endRemoveRows();
    emit countChanged();
}

void MessageListModel::setStreaming(bool streaming) {
    if (m_streaming == streaming)
        return;
    m_streaming = streaming;
    if (count() > 0)
        emit dataChanged(index(count() - 1), index(count() - 1), {IsStreamingRole});
}

}
