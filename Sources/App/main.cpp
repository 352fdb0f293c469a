#include "KorviApp.h"
#include "Log.h"

#include <QGuiApplication>
#include <QLocale>

int main(int argc, char* argv[]) {
    QGuiApplication application(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("korvi"));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Korvi"));
    QGuiApplication::setDesktopFileName(QStringLiteral("korvi"));
    QLocale::setDefault(QLocale(QLocale::Russian));
    Korvi::installLogFormat();

    Korvi::KorviApp korvi;
    return korvi.start() ? QGuiApplication::exec() : EXIT_FAILURE;
}
