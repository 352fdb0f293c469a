#include <QGuiApplication>

#include <gtest/gtest.h>

#include <unistd.h>

int main(int argc, char** argv) {
    // The web engine refuses to run its own sandbox as root, which is what tests in a container run as.
    if (geteuid() == 0)
        qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
    testing::InitGoogleTest(&argc, argv);
    const QGuiApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
