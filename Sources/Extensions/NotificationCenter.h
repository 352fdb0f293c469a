#pragma once

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
    void projectChatCreated(qint64 chatId);
    // The machine has a network again, or none any more.
    void networkDidBecomeAvailable();
    void networkDidBecomeUnavailable();
};

}
