// Shows parts of answers to those who change them: gallery FOLDER draws each *.qml beside this file in both schemes, in
// three sizes of text, in a wide and in a narrow window, into FOLDER. gallery FOLDER NAME draws one of them.
#include "MarkdownValues.h"

#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QTemporaryDir>
#include <QTest>
#include <QtPlugin>

#include <cstdio>
#include <memory>

Q_IMPORT_PLUGIN(Korvi_ViewsPlugin)

namespace {

constexpr int wide = 808; // the reading column and what is around it
constexpr int narrow = 520;

// The address of a picture on the disk.
QString picture() {
    static const QTemporaryDir folder;
    QImage image(480, 320, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient sky(0, 0, 0, 320);
    sky.setColorAt(0, QColor(0x2b, 0x5c, 0x9e));
    sky.setColorAt(1, QColor(0xf3, 0xb2, 0x7a));
    painter.fillRect(image.rect(), sky);
    painter.setBrush(QColor(0xff, 0xe3, 0xa8));
    painter.drawEllipse(QPoint(330, 190), 50, 50);
    painter.fillRect(0, 240, 480, 80, QColor(0x23, 0x3b, 0x4d));
    painter.end();
    const QString path = folder.filePath(QStringLiteral("picture.png"));
    image.save(path);
    return QUrl::fromLocalFile(path).toString();
}

void draw(const QFileInfo& file, const QString& scheme, int textSize, int width, const QString& folder) {
    Korvi::MarkdownValues values; // outlives what is given them
    QQuickView view;
    QQmlComponent settings(view.engine());
    settings.setData("import QtQml; import Korvi.Views; QtObject { property var theme: Theme }", {});
    const std::unique_ptr<QObject> holder(settings.create());
    auto* theme = holder->property("theme").value<QObject*>();
    theme->setProperty("scheme", scheme);
    theme->setProperty("textSize", textSize);
    theme->setProperty("reducedMotion", true);
    view.rootContext()->setContextProperty("markdown", &values);
    view.rootContext()->setContextProperty("sample", picture());
    view.setColor(theme->property("bg").value<QColor>());
    view.setResizeMode(QQuickView::SizeRootObjectToView);
    view.setSource(QUrl::fromLocalFile(file.filePath()));
    if (!view.rootObject())
        qFatal("%s cannot be shown", qUtf8Printable(file.filePath()));
    view.resize(width, 100);
    view.show();
    QTest::qWait(300); // images come
    view.resize(width, static_cast<int>(view.rootObject()->implicitHeight()));
    QTest::qWait(50);
    const QString name = QStringLiteral("%1-%2-%3-%4.png").arg(file.baseName(), scheme).arg(textSize).arg(width);
    if (!view.grabWindow().save(QDir(folder).filePath(name)))
        qFatal("%s cannot be written", qUtf8Printable(name));
}

}

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() < 2) {
        std::fprintf(stderr, "usage: gallery FOLDER [NAME]\n");
        return 2;
    }
    const QString names = arguments.size() > 2 ? arguments[2] + QStringLiteral(".qml") : QStringLiteral("*.qml");
    const QString folder = arguments[1];
    QDir().mkpath(folder);
    for (const QFileInfo& file : QDir(QStringLiteral(GALLERY_SOURCE_DIR)).entryInfoList({names})) {
        for (const char* scheme : {"light", "dark"}) {
            for (const int textSize : {11, 13, 20}) {
                for (const int width : {wide, narrow})
                    draw(file, QString::fromLatin1(scheme), textSize, width, folder);
            }
        }
    }
}
