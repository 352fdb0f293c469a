// The web engine in the test's own process, as the renderer has it.
#include "BundleHandler.h"

#include <QGuiApplication>

#include <gtest/gtest.h>
#include <unistd.h>

int main(int argc, char** argv) {
    if (geteuid() == 0)
        qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1"); // the sandbox cannot work for root; only tests run as root
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QTWEBENGINE_CHROMIUM_FLAGS", "--disable-gpu");
    testing::InitGoogleTest(&argc, argv);
    Korvi::BundleHandler::registerScheme();
    QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
