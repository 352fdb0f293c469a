// A stand-in for the desktop's settings portal on a private session bus: says whether the desktop is light or dark,
// and tells those who listen when that changes. Prints "ready" when it can be asked.
//
//   dbus-send --session --dest=org.freedesktop.portal.Desktop /org/freedesktop/portal/desktop
//       org.korvi.Desktop.SetColorScheme uint32:1        (1 dark, 2 light)
#include <QCoreApplication>
#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusVariant>

#include <cstdio>

class Settings : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    explicit Settings(QObject* parent)
        : QDBusAbstractAdaptor(parent) {}

    uint scheme = 2;

public slots:
    QDBusVariant Read(const QString&, const QString& key) {
        const QVariant value = key == QLatin1String("color-scheme") ? QVariant(scheme) : QVariant(true);
        // The portal wraps its answer twice.
        return QDBusVariant(QVariant::fromValue(QDBusVariant(value)));
    }

signals:
    void SettingChanged(const QString& group, const QString& key, const QDBusVariant& value);
};

class Desktop : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.korvi.Desktop")

public:
    Desktop(QObject* parent, Settings& settings)
        : QDBusAbstractAdaptor(parent)
        , m_settings(settings) {}

public slots:
    void SetColorScheme(uint scheme) {
        m_settings.scheme = scheme;
        emit m_settings.SettingChanged(
            QStringLiteral("org.freedesktop.appearance"), QStringLiteral("color-scheme"), QDBusVariant(scheme));
    }

private:
    Settings& m_settings;
};

int main(int argc, char* argv[]) {
    QCoreApplication application(argc, argv);
    QObject object;
    Settings settings(&object);
    Desktop desktop(&object, settings);
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.registerObject(QStringLiteral("/org/freedesktop/portal/desktop"), &object) ||
        !bus.registerService(QStringLiteral("org.freedesktop.portal.Desktop")))
        return EXIT_FAILURE;
    std::puts("ready");
    std::fflush(stdout);
    return QCoreApplication::exec();
}

#include "SettingsPortal.moc"
