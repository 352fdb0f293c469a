#include "KorviApp.h"
#include "Log.h"
#include "QtTexts.h"
#include "SingleInstance.h"

#include <QGuiApplication>
#include <QLocale>

int main(int argc, char* argv[]) {
    // The other backend for videos ends the program where one of its plugins is missing.
    if (!qEnvironmentVariableIsSet("QT_MEDIA_BACKEND"))
        qputenv("QT_MEDIA_BACKEND", "ffmpeg");
    QGuiApplication application(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("korvi"));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Korvi"));
    QGuiApplication::setDesktopFileName(QStringLiteral("korvi"));
    QLocale::setDefault(QLocale(QLocale::Russian));
    Korvi::QtTexts texts;
    QGuiApplication::installTranslator(&texts);
    Korvi::installLogFormat();

    Korvi::SingleInstance instance;
    if (!instance.claim(QGuiApplication::arguments().mid(1)))
        return EXIT_SUCCESS;
    Korvi::KorviApp korvi;
    korvi.follow(instance);
    return korvi.start() ? QGuiApplication::exec() : EXIT_FAILURE;
}
