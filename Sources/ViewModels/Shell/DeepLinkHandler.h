#pragma once

#include <QObject>

#include <optional>

namespace Korvi {

// A chat that something outside of the window (a notification) wants to be opened. Whoever opens it clears it.
class DeepLinkHandler : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    std::optional<qint64> pendingChatId() const { return m_pendingChatId; }
    void setPendingChatId(std::optional<qint64> chatId) {
        m_pendingChatId = chatId;
        if (chatId)
            emit chatRequested();
    }

signals:
    void chatRequested();

private:
    std::optional<qint64> m_pendingChatId;
};

}
