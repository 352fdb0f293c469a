#pragma once

#include "Chat.h"

#include <QObject>

namespace Korvi {

// Process-wide notifications, one signal each. Posted on the main thread; listeners run at once.
class NotificationCenter : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

signals:
    // The service has refused the token and the stored credentials have been wiped.
    void didReceiveUnauthorizedError();
    // An answer has come to its end.
    void didCompleteAIResponse();
    // A chat has been created inside a project.
    void projectChatCreated(const Korvi::Chat& chat);
    // A chat has been deleted, inside a project or not.
    void projectChatDeleted(qint64 chatId);
    // Another organization, or none, is the current one: what was loaded belongs to the former.
    void organizationDidChange();
    // A session of the agent has come to its end; `fromNotification`: the user has asked to see it.
    void agentSessionCompleted(const QString& sessionId, bool fromNotification);
    // The machine has a network again, or none any more.
    void networkDidBecomeAvailable();
    void networkDidBecomeUnavailable();
};

}
