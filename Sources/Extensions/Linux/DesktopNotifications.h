#pragma once

#include "UserNotifications.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QHash>
#include <QSet>

#include <functional>

namespace Korvi {

// Notifications through org.freedesktop.Notifications on the session bus. A desktop has no permission to ask for:
// they are shown when a server answers. A server that goes takes what it showed with it.
class DesktopNotifications : public UserNotifications {
    Q_OBJECT

public:
    // `applicationName` is shown; `desktopEntry` names the installed .desktop file, for the icon.
    DesktopNotifications(QString applicationName, QString desktopEntry,
        QDBusConnection bus = QDBusConnection::sessionBus(), QObject* parent = nullptr);

    Async<bool> requestAuthorization() override { return isAuthorized(); }
    Async<bool> isAuthorized() override;
    void show(UserNotification notification) override;
    void withdraw(const QString& id) override;

private slots:
    void actionInvoked(uint id, const QString& action);
    void notificationClosed(uint id, uint reason);
    void tokenGiven(uint id, const QString& token);

private:
    void notify(const UserNotification& notification);
    void take(uint serverId, const UserNotification& notification);
    // A signal may come before the answer that tells its number: then it is heard again once the answer is there.
    bool isEarly(uint id, std::function<void()> signal);

    QString m_applicationName;
    QString m_desktopEntry;
    QDBusConnection m_bus;
    QDBusServiceWatcher m_server;
    std::optional<bool> m_readsMarkup;     // absent until the server has told
    QHash<uint, UserNotification> m_shown; // by the server's number
    QHash<uint, QString> m_tokens;
    QHash<QString, int> m_pending; // how many of an id are on their way to the server
    QSet<QString> m_withdrawn;     // while they were
    QList<std::function<void()>> m_early;
};

}
