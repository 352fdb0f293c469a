#include "Chat/MessageHandle.h"

#include <algorithm>

namespace Korvi {

MessageHandle::MessageHandle(const MessageListModel& list, int row, quint64 revision)
    : m_list(&list)
    , m_row(row)
    , m_messageId(list.messages()[static_cast<std::size_t>(row)].id)
    , m_revision(revision) {}

const ChatMessage* MessageHandle::message() const {
    if (!m_list)
        return nullptr;
    const std::vector<ChatMessage>& all = m_list->messages();
    if (m_row < m_list->count() && all[static_cast<std::size_t>(m_row)].id == m_messageId)
        return &all[static_cast<std::size_t>(m_row)];
    const auto found =
        std::find_if(all.begin(), all.end(), [this](const ChatMessage& message) { return message.id == m_messageId; });
    return found == all.end() ? nullptr : &*found;
}

}
