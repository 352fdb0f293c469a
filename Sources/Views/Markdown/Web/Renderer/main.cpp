// The process in which formulas and diagrams are laid out, with a web engine of its own: the client pays nothing for it
// at its start, gets all of its memory back when it ends, and outlives whatever happens in here.
#include "Renderer.h"
#include "Session.h"

#include <QGuiApplication>

#include <csignal>
#include <unistd.h>

int main(int argc, char* argv[]) {
    // What libraries print must not come between the answers.
    const int output = dup(STDOUT_FILENO);
    dup2(STDERR_FILENO, STDOUT_FILENO);
    std::signal(SIGPIPE, SIG_IGN);

    // Nothing is ever shown, so neither a display nor a graphics card is asked for. The rest is a second fence behind
    // the gate: no name leads anywhere, and nothing is done in the background.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QTWEBENGINE_CHROMIUM_FLAGS",
        "--disable-gpu --disable-background-networking --disable-component-update --disable-sync --no-pings "
        "--force-device-scale-factor=1 --host-resolver-rules=\"MAP * ~NOTFOUND\" "
        "--force-webrtc-ip-handling-policy=disable_non_proxied_udp");
    Korvi::BundleHandler::registerScheme();
    QGuiApplication application(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("korvi-formulas"));
    if (argc != 2) {
        qCritical("usage: korvi-formulas BUNDLE");
        return EXIT_FAILURE;
    }
    Korvi::Renderer renderer(QString::fromLocal8Bit(argv[1]));
    const Korvi::Session session(renderer, STDIN_FILENO, output);
    return QGuiApplication::exec();
}
