#pragma once

#include <QDBusMessage>
#include <QObject>

namespace Korvi {

// What the desktop says of its looks, through the settings portal: asked for once at the start, without waiting,
// and followed from then on. Without a portal the palette of the platform decides.
class DesktopAppearance : public QObject {
    Q_OBJECT

public:
    explicit DesktopAppearance(QObject* parent = nullptr);

    QString scheme() const { return m_scheme; } // "system", "light" or "dark"
    bool reducedMotion() const { return m_reducedMotion; }

signals:
    void changed();

private slots:
    void settingChanged(const QDBusMessage& message); // group, key, value

private:
    void ask(const QString& group, const QString& key);
    void take(const QString& key, const QVariant& value);

    QString m_scheme = QStringLiteral("system");
    bool m_reducedMotion = false;
};

}
