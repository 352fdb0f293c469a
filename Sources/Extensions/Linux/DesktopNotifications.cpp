#include "DesktopNotifications.h"

#include "Log.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace Korvi {

using namespace Qt::Literals;

namespace {

const auto service = u"org.freedesktop.Notifications"_s;
const auto path = u"/org/freedesktop/Notifications"_s;
const auto defaultAction = u"default"_s;
constexpr int serverDecides = -1; // how long it is shown

QDBusMessage call(const QString& method, const QVariantList& arguments = {}) {
    QDBusMessage message = QDBusMessage::createMethodCall(service, path, service, method);
    message.setArguments(arguments);
    return message;
}

template <class Handle>
void whenAnswered(const QDBusPendingCall& pending, QObject* owner, Handle handle) {
    auto* watcher = new QDBusPendingCallWatcher(pending, owner);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, owner, [watcher, handle]() mutable {
        watcher->deleteLater();
        handle(*watcher);
    });
}

}

DesktopNotifications::DesktopNotifications(
    QString applicationName, QString desktopEntry, QDBusConnection bus, QObject* parent)
    : UserNotifications(parent)
    , m_applicationName(std::move(applicationName))
    , m_desktopEntry(std::move(desktopEntry))
    , m_bus(std::move(bus))
    , m_server(service, m_bus, QDBusServiceWatcher::WatchForOwnerChange) {
    if (!m_bus.isConnected())
        return;
    m_bus.connect(service, path, service, u"ActionInvoked"_s, this, SLOT(actionInvoked(uint, QString)));
    m_bus.connect(service, path, service, u"NotificationClosed"_s, this, SLOT(notificationClosed(uint, uint)));
    m_bus.connect(service, path, service, u"ActivationToken"_s, this, SLOT(tokenGiven(uint, QString)));
    // Another server gives its own numbers, and may not read markup.
    connect(&m_server, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] {
        m_shown.clear();
        m_tokens.clear();
        m_early.clear();
        m_readsMarkup.reset();
    });
}

Async<bool> DesktopNotifications::isAuthorized() {
    Resolver<bool> resolver;
    if (!m_bus.isConnected()) {
        resolver.resolve(false);
        return resolver.async();
    }
    // Starts a server that waits to be needed.
    whenAnswered(m_bus.asyncCall(call(u"GetServerInformation"_s)), this,
        [resolver](const QDBusPendingCall& answer) mutable { resolver.resolve(!answer.isError()); });
    return resolver.async();
}

void DesktopNotifications::show(UserNotification notification) {
    if (!m_bus.isConnected())
        return;
    ++m_pending[notification.id];
    if (m_readsMarkup)
        return notify(notification);
    whenAnswered(m_bus.asyncCall(call(u"GetCapabilities"_s)), this,
        [this, notification = std::move(notification)](const QDBusPendingCall& answer) {
            const QDBusPendingReply<QStringList> reply = answer;
            if (!reply.isError())
                m_readsMarkup = reply.value().contains("body-markup"_L1);
            notify(notification);
        });
}

void DesktopNotifications::notify(const UserNotification& notification) {
    uint replaced = 0;
    for (auto shown = m_shown.begin(); shown != m_shown.end(); ++shown) {
        if (shown->id == notification.id)
            replaced = shown.key();
    }
    const bool readsMarkup = m_readsMarkup.value_or(false);
    const QVariantMap hints{{u"desktop-entry"_s, m_desktopEntry}, {u"category"_s, u"im.received"_s}};
    const QVariantList arguments{m_applicationName, replaced, m_desktopEntry, notification.title,
        readsMarkup ? notification.body.toHtmlEscaped() : notification.body, QStringList{defaultAction, u"Открыть"_s},
        hints, serverDecides};
    whenAnswered(
        m_bus.asyncCall(call(u"Notify"_s, arguments)), this, [this, notification](const QDBusPendingCall& answer) {
            const QDBusPendingReply<uint> reply = answer;
            if (--m_pending[notification.id] == 0)
                m_pending.remove(notification.id);
            if (reply.isError())
                m_withdrawn.remove(notification.id);
            if (reply.isError())
                qCInfo(lcPlatform).noquote()
                    << "🔔 [UserNotifications] Nobody shows notifications:" << reply.error().name();
            else
                take(reply.value(), notification);
            for (const auto& signal : std::exchange(m_early, {}))
                signal();
        });
}

void DesktopNotifications::take(uint serverId, const UserNotification& notification) {
    m_shown.insert(serverId, notification);
    if (m_withdrawn.remove(notification.id))
        withdraw(notification.id);
}

void DesktopNotifications::withdraw(const QString& id) {
    if (m_pending.contains(id))
        m_withdrawn.insert(id);
    for (auto shown = m_shown.cbegin(); shown != m_shown.cend(); ++shown) {
        if (shown->id == id)
            m_bus.send(call(u"CloseNotification"_s, {shown.key()}));
    }
}

bool DesktopNotifications::isEarly(uint id, std::function<void()> signal) {
    if (m_shown.contains(id) || m_pending.isEmpty())
        return false;
    m_early.append(std::move(signal));
    return true;
}

void DesktopNotifications::tokenGiven(uint id, const QString& token) {
    if (isEarly(id, [=, this] { tokenGiven(id, token); }))
        return;
    if (m_shown.contains(id))
        m_tokens.insert(id, token);
}

// Everybody's notifications are announced to everybody: those of others are not known here.
void DesktopNotifications::actionInvoked(uint id, const QString& action) {
    if (isEarly(id, [=, this] { actionInvoked(id, action); }))
        return;
    if (action == defaultAction && m_shown.contains(id))
        emit activated(m_shown.value(id), m_tokens.take(id));
}

void DesktopNotifications::notificationClosed(uint id, uint reason) {
    if (isEarly(id, [=, this] { notificationClosed(id, reason); }))
        return;
    m_shown.remove(id);
    m_tokens.remove(id);
}

}
