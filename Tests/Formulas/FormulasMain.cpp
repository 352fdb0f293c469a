// Formulas and diagrams as the client has them: the renderer is a process of its own.
#include <QGuiApplication>
#include <QStandardPaths>
#include <QtPlugin>

#include <gtest/gtest.h>
#include <unistd.h>

Q_IMPORT_PLUGIN(Korvi_ViewsPlugin)

int main(int argc, char** argv) {
    if (geteuid() == 0)
        qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1"); // the sandbox cannot work for root; only tests run as root
    QStandardPaths::setTestModeEnabled(true);
    testing::InitGoogleTest(&argc, argv);
    QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
