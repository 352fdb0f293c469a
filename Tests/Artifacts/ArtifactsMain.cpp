#include <QGuiApplication>
#include <QStandardPaths>

#include <gtest/gtest.h>

#include <unistd.h>

int main(int argc, char** argv) {
    QStandardPaths::setTestModeEnabled(true);
    // The web engine refuses to run its own sandbox as root, which is what tests in a container run as.
    if (geteuid() == 0)
        qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
    testing::InitGoogleTest(&argc, argv);
    const QGuiApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
