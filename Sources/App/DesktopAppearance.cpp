#include "DesktopAppearance.h"

#include <QDBusConnection>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

namespace Korvi {

using namespace Qt::Literals;

namespace {

const auto portal = u"org.freedesktop.portal.Desktop"_s;
const auto path = u"/org/freedesktop/portal/desktop"_s;
const auto settings = u"org.freedesktop.portal.Settings"_s;
constexpr auto schemeKey = "color-scheme"_L1;
constexpr auto animationsKey = "enable-animations"_L1;

// Read() wraps its value in one variant more than SettingChanged does.
QVariant unwrapped(QVariant value) {
    while (value.canConvert<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

}

DesktopAppearance::DesktopAppearance(QObject* parent)
    : QObject(parent) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    bus.connect(portal, path, settings, u"SettingChanged"_s, this, SLOT(settingChanged(QDBusMessage)));
    ask(u"org.freedesktop.appearance"_s, schemeKey);
    ask(u"org.gnome.desktop.interface"_s, animationsKey);
}

void DesktopAppearance::ask(const QString& group, const QString& key) {
    QDBusMessage message = QDBusMessage::createMethodCall(portal, path, settings, u"Read"_s);
    message.setArguments({group, key});
    auto* call = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(message), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [this, call, key] {
        const QDBusPendingReply<QDBusVariant> reply = *call;
        if (!reply.isError())
            take(key, unwrapped(QVariant::fromValue(reply.value())));
        call->deleteLater();
    });
}

void DesktopAppearance::settingChanged(const QDBusMessage& message) {
    const QVariantList arguments = message.arguments();
    if (arguments.size() == 3)
        take(arguments.at(1).toString(), unwrapped(arguments.at(2)));
}

void DesktopAppearance::take(const QString& key, const QVariant& value) {
    if (key == schemeKey) {
        m_scheme = value.toUInt() == 1 ? u"dark"_s : value.toUInt() == 2 ? u"light"_s : u"system"_s;
    } else if (key == animationsKey) {
        m_reducedMotion = !value.toBool();
    } else {
        return;
    }
    emit changed();
}

}
