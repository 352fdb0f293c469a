#pragma once

#include "ChatMessage.h"
#include "Scheduler.h"
#include "TaskScope.h"

#include <QHash>
#include <QObject>
#include <QSet>

namespace Korvi {

class ChatService;

// Loads the messages of chats. A list that was asked for before something happened in its chat may not know of it, and
// may come after one that does: there is one request for a chat at a time, and an outdated one is made again. Main
// thread only.
class MessageLoader : public QObject {
    Q_OBJECT

public:
    // A list that came too early is asked for again after 3 s, then after twice as long each time.
    static constexpr auto firstDelay = std::chrono::seconds(3);
    static constexpr int maxRepeats = 7;

    MessageLoader(ChatService& chatService, Scheduler& scheduler);

    void load(qint64 chatId);
    Task<void> loadNow(qint64 chatId); // the same, to be waited for; returns at once if it is being loaded
    // False when that has been tried often enough.
    bool loadLater(qint64 chatId);
    void touch(qint64 chatId); // something has happened in the chat
    void clear();              // what is on its way is not wanted

signals:
    void loaded(qint64 chatId, const std::vector<Korvi::ChatMessage>& messages);
    void failed(qint64 chatId, bool isGone); // isGone: there is no such chat

private:
    struct Repeat {
        int count = 0;
        Timer timer;
    };

    ChatService& m_chatService;
    Scheduler& m_scheduler;
    QSet<qint64> m_loading;
    QSet<qint64> m_outdated;
    std::map<qint64, Repeat> m_repeats;
    quint64 m_epoch = 0; // moves on when everything is cleared
    TaskScope m_scope;   // last: its tasks end before anything they use
};

}
