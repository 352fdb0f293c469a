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
    case IsGeneratingRole: return m_generating.contains(chat.id);
    default: return {};
    }
}

QHash<int, QByteArray> ChatListModel::roleNames() const {
    return {
        {ChatIdRole, "chatId"},
        {NameRole, "name"},
        {IsFavoriteRole, "isFavorite"},
        {UpdatedAtRole, "updatedAt"},
        {IsGeneratingRole, "isGenerating"},
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
    const int before = count();
    if (m_chats.empty() || chats.empty()) {
        beginResetModel();
        m_chats = std::move(chats);
        endResetModel();
    } else {
        becomeStepwise(std::move(chats));
    }
    if (count() != before)
        emit countChanged();
}

// Row by row from the top: views keep their place, and their delegates.
void ChatListModel::becomeStepwise(std::vector<Chat> chats) {
    QSet<qint64> wanted;
    for (const Chat& chat : chats)
        wanted.insert(chat.id);
    for (int row = count() - 1; row >= 0; --row) {
        if (!wanted.contains(at(row).id))
            removeAt(row);
    }
    for (int row = 0; row < static_cast<int>(chats.size()); ++row) {
        Chat& chat = chats[static_cast<std::size_t>(row)];
        int from = row;
        while (from < count() && at(from).id != chat.id)
            ++from;
        if (from == count()) {
            beginInsertRows({}, row, row);
            m_chats.insert(m_chats.begin() + row, std::move(chat));
            endInsertRows();
            continue;
        }
        moveTo(from, row);
        replaceAt(row, std::move(chat));
    }
    while (count() > static_cast<int>(chats.size())) // doubles of the former list
        removeAt(count() - 1);
}

void ChatListModel::upsert(Chat chat) {
    const auto known =
        std::find_if(m_chats.begin(), m_chats.end(), [&](const Chat& each) { return each.id == chat.id; });
    if (known == m_chats.end()) {
        const auto place = std::lower_bound(m_chats.begin(), m_chats.end(), chat, comesBefore);
        const int row = static_cast<int>(place - m_chats.begin());
        beginInsertRows({}, row, row);
        m_chats.insert(place, std::move(chat));
        endInsertRows();
        emit countChanged();
        return;
    }
    const int from = static_cast<int>(known - m_chats.begin());
    // Among the others, which are sorted.
    const auto before = [&](const Chat& each) { return each.id != chat.id && comesBefore(each, chat); };
    const int to = static_cast<int>(std::count_if(m_chats.begin(), m_chats.end(), before));
    moveTo(from, to);
    replaceAt(to, std::move(chat));
}

void ChatListModel::remove(qint64 id) {
    const int before = count();
    for (int row = before - 1; row >= 0; --row) {
        if (at(row).id == id)
            removeAt(row);
    }
    if (count() != before)
        emit countChanged();
}

void ChatListModel::setGenerating(const QSet<qint64>& ids) {
    const QSet<qint64> changed = (ids - m_generating) + (m_generating - ids);
    m_generating = ids;
    for (int row = 0; row < count() && !changed.isEmpty(); ++row) {
        if (changed.contains(at(row).id))
            emit dataChanged(index(row), index(row), {IsGeneratingRole});
    }
}

void ChatListModel::moveTo(int from, int to) {
    if (from == to)
        return;
    beginMoveRows({}, from, from, {}, to > from ? to + 1 : to);
    const auto first = m_chats.begin();
    if (from < to)
        std::rotate(first + from, first + from + 1, first + to + 1);
    else
        std::rotate(first + to, first + from, first + from + 1);
    endMoveRows();
}

void ChatListModel::replaceAt(int row, Chat chat) {
    Chat& old = m_chats[static_cast<std::size_t>(row)];
    if (old == chat)
        return;
    old = std::move(chat);
    emit dataChanged(index(row), index(row));
}

void ChatListModel::removeAt(int row) {
    beginRemoveRows({}, row, row);
    m_chats.erase(m_chats.begin() + row);
    endRemoveRows();
}

}
