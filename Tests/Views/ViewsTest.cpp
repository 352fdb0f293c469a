// Runs the tst_*.qml files beside it. A warning of the QML engine, a binding loop among them, ends the run.
#include "MarkdownValues.h"

#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QTest>
#include <QtPlugin>
#include <QtQuickTest>

Q_IMPORT_PLUGIN(Korvi_ViewsPlugin)

// Keys that TestCase.keyClick() has no name for: those of other alphabets.
class Keyboard : public QObject {
    Q_OBJECT

public:
    Q_INVOKABLE void click(QQuickWindow* window, const QString& character, Qt::KeyboardModifiers modifiers) const {
        const auto key = static_cast<Qt::Key>(character.at(0).toUpper().unicode());
        QTest::sendKeyEvent(QTest::Click, window, key, character, modifiers);
    }
};

class Setup : public QObject {
    Q_OBJECT

public slots:
    void qmlEngineAvailable(QQmlEngine* engine) {
        engine->rootContext()->setContextProperty("keyboard", &m_keyboard);
        engine->rootContext()->setContextProperty("markdown", &m_markdown);
        connect(engine, &QQmlEngine::warnings, this, [](const QList<QQmlError>& warnings) {
            for (const QQmlError& warning : warnings)
                qFatal("QML warning: %s", qUtf8Printable(warning.toString()));
        });
    }

private:
    Keyboard m_keyboard;
    Korvi::MarkdownValues m_markdown;
};

QUICK_TEST_MAIN_WITH_SETUP(views, Setup)

#include "ViewsTest.moc"
