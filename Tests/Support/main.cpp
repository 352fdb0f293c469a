#include <QCoreApplication>
#include <QStandardPaths>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    // Nothing a test does touches the files of the user who runs it.
    QStandardPaths::setTestModeEnabled(true);
    testing::InitGoogleTest(&argc, argv);
    QCoreApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
