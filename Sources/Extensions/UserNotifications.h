#pragma once

#include "Async.h"

#include <QJsonObject>
#include <QObject>

namespace Korvi {

// What the desktop is asked to show, outside of the application's windows.
struct UserNotification {
    QString id; // a later one with the same id takes the place of the former
    QString title;
    QString body;
    QJsonObject userInfo; // comes back when the user acts on it

    bool operator==(const UserNotification&) const = default;
};

// The desktop's notifications. Showing one never fails: where nobody shows them, nothing happens. Main thread only.
class UserNotifications : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    // Whether notifications are shown. The first may ask the user; the second never does.
    virtual Async<bool> requestAuthorization() = 0;
    virtual Async<bool> isAuthorized() = 0;

    // Shown whether or not the application is in front: whoever calls decides.
    virtual void show(UserNotification notification) = 0;
    virtual void withdraw(const QString& id) = 0;

signals:
    // The user wants what the notification tells of. `activationToken` lets a window come to the front; may be empty.
    void activated(const Korvi::UserNotification& notification, const QString& activationToken);
};

}
