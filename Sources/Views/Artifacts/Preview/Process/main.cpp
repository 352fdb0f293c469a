// The process in which artifacts are shown and printed: pages that a model wrote, with script in them. It has no network
// and ends with the preview, so nothing of them outlives it, and the client pays for a web engine only while one is seen.
#include "Isolation.h"
#include "PreviewSession.h"

#include <QGuiApplication>
#include <QQuickWindow>
#include <QtWebEngineQuick>

#include <csignal>
#include <unistd.h>

int main(int argc, char* argv[]) {
    // What libraries print must not come between the answers.
    const int output = dup(STDOUT_FILENO);
    dup2(STDERR_FILENO, STDOUT_FILENO);
    std::signal(SIGPIPE, SIG_IGN);
    if (argc < 2) {
        qCritical("usage: korvi-preview BUNDLE [--keep-network]");
        return EXIT_FAILURE;
    }
    // The fences inside are tested without the one around them.
    const bool keepsNetwork = argc > 2 && qstrcmp(argv[2], "--keep-network") == 0;
    if (!keepsNetwork && !Korvi::leaveNetwork())
        qWarning("korvi-preview: the kernel grants no network namespace");

    // No name or address leads anywhere, and connections between browsers would have to go through a proxy that is not
    // there: these go past the gate.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QTWEBENGINE_CHROMIUM_FLAGS",
        "--disable-gpu --disable-background-networking --disable-component-update --disable-sync --no-pings "
        "--mute-audio "
        "--force-device-scale-factor=1 --host-resolver-rules=\"MAP * ~NOTFOUND\" "
        "--force-webrtc-ip-handling-policy=disable_non_proxied_udp --renderer-process-limit=1");
    QQuickWindow::setSceneGraphBackend(QStringLiteral("software"));
    Korvi::BundleHandler::registerScheme();
    QtWebEngineQuick::initialize();
    QGuiApplication application(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("korvi-preview"));
    const Korvi::PreviewSession session(QString::fromLocal8Bit(argv[1]), STDIN_FILENO, output);
    return QGuiApplication::exec();
}
