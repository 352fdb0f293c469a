#pragma once

#include "Chat.h"
#include "Chat/SocketEvent.h"

#include <QObject>

namespace Korvi {

class AnswerStream;
class ChatDirectory;
class ConversationLoader;
class NotificationCenter;

// Takes what the socket tells to those whom it concerns, in the order in which it comes. Main thread only.
class SocketEventRouter : public QObject {
    Q_OBJECT

public:
    struct Dependencies {
        AnswerStream& stream;
        ChatDirectory& directory;
        ConversationLoader& loader;
        NotificationCenter& notifications;
    };

    explicit SocketEventRouter(Dependencies dependencies);

    void handle(const SocketEvent& event);

signals:
    void openChatCreated(const Korvi::Chat& chat); // the new chat that is shown has got its number
    void chatsOutdated();                          // a title is to come, or the list has not been loaded
    // An answer has ended with an error; `canRetry`: that of the open conversation.
    void failed(const QString& message, bool canRetry);

private:
    void connected();
    void created(const Chat& chat);
    void answerFailed(const SocketEvent::Error& error);
    void answerEnded();

    Dependencies m_dependencies;
};

}
