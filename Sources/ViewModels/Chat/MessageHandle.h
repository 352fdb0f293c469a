#pragma once

#include "ChatMessage.h"
#include "MessageListModel.h"

#include <QPointer>

namespace Korvi {

// A message of a list, to be read in place: a long answer that grows is never copied on its way to the screen. Two of
// them are equal as long as the message has not changed.
struct MessageHandle {
    Q_GADGET

public:
    MessageHandle() = default;
    MessageHandle(const MessageListModel& list, int row, quint64 revision);

    const ChatMessage* message() const; // as it is now; null when it is gone

    bool operator==(const MessageHandle&) const = default;

private:
    QPointer<const MessageListModel> m_list;
    int m_row = -1; // where it was
    qint64 m_messageId = 0;
    quint64 m_revision = 0;
};

}
