#include "XdgDesktop.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

namespace Korvi {

using namespace Qt::Literals;

namespace {

bool xdgOpen(const QString& path) {
    const QString program = QStandardPaths::findExecutable(u"xdg-open"_s);
    return !program.isEmpty() && QProcess::startDetached(program, {path});
}

}

bool XdgDesktop::openFile(const QString& path) {
    return QFileInfo(path).isFile() && xdgOpen(path);
}

void XdgDesktop::showInFolder(const QString& path) {
    const QString folder = QFileInfo(path).absolutePath();
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        xdgOpen(folder);
        return;
    }
    QDBusMessage call = QDBusMessage::createMethodCall(u"org.freedesktop.FileManager1"_s,
        u"/org/freedesktop/FileManager1"_s, u"org.freedesktop.FileManager1"_s, u"ShowItems"_s);
    call << QStringList{QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded)} << QString();
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, folder] {
        if (watcher->isError())
            xdgOpen(folder);
        watcher->deleteLater();
    });
}

}
