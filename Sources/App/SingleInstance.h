#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QUrl>
#include <QVariantMap>

namespace Korvi {

// One Korvi for a session: a second start hands what it was started with to the one that runs, over the session bus
// (org.freedesktop.Application), and ends. So a browser that starts the program with a redirect reaches the window
// that waits for it. Without a session bus every start is the first one.
//
// A program with an Info.json of its own is an application of its own.
class SingleInstance : public QObject {
    Q_OBJECT

public:
    explicit SingleInstance(QObject* parent = nullptr);
    ~SingleInstance() override;

    // Whether this is the one that stays. Otherwise the other has taken the URLs among the arguments, or shows its
    // window when there are none. Waits for the other at most `patience`; one that does not answer is left alone.
    bool claim(const QStringList& arguments);

    static constexpr int patience = 5000; // milliseconds

signals:
    // Both come from any program of the session: nothing in them can be trusted.
    void activated();
    void urlOpened(const QUrl& url);

private:
    friend class ApplicationAdaptor;

    bool handOver(const QStringList& urls);
    void open(const QStringList& urls);

    QDBusConnection m_bus;
    QString m_name;
    QString m_path;
    bool m_isOwner = false;
};

}
