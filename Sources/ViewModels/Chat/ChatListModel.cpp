#include "Chat/ChatListModel.h"

#include <algorithm>

namespace Korvi {

namespace {

bool comesBefore(const Chat& a, const Chat& b) {
    const bool favoriteA = a.isFavorite.value_or(false);
    const bool favoriteB = b.isFavorite.value_or(false);
    return favoriteA != favoriteB ? favoriteA : a.updatedAt > b.updatedAt;
}

}

int ChatListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant ChatListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= count())
        return {};
    const Chat& chat = m_chats[static_cast<std::size_t>(index.row())];
    switch (role) {
    case ChatIdRole: return chat.id;
    case NameRole: return chat.name;
    case IsFavoriteRole: return chat.isFavorite.value_or(false);
    case UpdatedAtRole: return chat.updatedAt;
    default: return {};
    }
}

QHash<int, QByteArray> ChatListModel::roleNames() const {
    return {
        {ChatIdRole, "chatId"},
        {NameRole, "name"},
        {IsFavoriteRole, "isFavorite"},
        {UpdatedAtRole, "updatedAt"},
    };
}

const Chat* ChatListModel::find(qint64 id) const {
    const auto it = std::find_if(m_chats.begin(), m_chats.end(), [id](const Chat& chat) { return chat.id == id; });
    return it == m_chats.end() ? nullptr : &*it;
}

bool ChatListModel::isFavorite(qint64 chatId) const {
    const Chat* chat = find(chatId);
    return chat && chat->isFavorite.value_or(false);
}

void ChatListModel::setChats(std::vector<Chat> chats) {
    std::stable_sort(chats.begin(), chats.end(), comesBefore);
    if (chats == m_chats)
        return;
    beginResetModel();
    m_chats = std::move(chats);
    endResetModel();
    emit countChanged();
}

void ChatListModel::upsert(Chat chat) {
    const auto it =
        std::find_if(m_chats.begin(), m_chats.end(), [&](const Chat& known) { return known.id == chat.id; });
    if (it != m_chats.end()) {
        const int row = static_cast<int>(it - m_chats.begin());
        beginRemoveRows({}, row, row);
        m_chats.erase(it);
        endRemoveRows();
    }
    const auto place = std::lower_bound(m_chats.begin(), m_chats.end(), chat, comesBefore);
    const int row = static_cast<int>(place - m_chats.begin());
    beginInsertRows({}, row, row);
    m_chats.insert(place, std::move(chat));
    endInsertRows();
    emit countChanged();
}

}
