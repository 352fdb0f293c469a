// Runs the tst_*.qml files beside it. A warning of the QML engine, a binding loop among them, ends the run.
#include "MarkdownValues.h"

#include <QDesktopServices>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QTest>
#include <QtPlugin>
#include <QtQuickTest>

#include <memory>

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

// Somebody who drags something from elsewhere over the window.
class Dragging : public QObject {
    Q_OBJECT

public:
    // Whether it would be taken there.
    Q_INVOKABLE bool hold(QQuickWindow* window, const QPointF& at, const QList<QUrl>& urls, const QString& type = {},
        const QString& text = {}) {
        m_data = std::make_unique<QMimeData>();
        if (!urls.isEmpty())
            m_data->setUrls(urls);
        if (!type.isEmpty())
            m_data->setData(type, "picture");
        if (!text.isEmpty())
            m_data->setText(text);
        QDragEnterEvent enter(at.toPoint(), Qt::CopyAction, m_data.get(), Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(window, &enter);
        QDragMoveEvent move(at.toPoint(), Qt::CopyAction, m_data.get(), Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(window, &move);
        return move.isAccepted();
    }
    Q_INVOKABLE void leave(QQuickWindow* window) {
        QDragLeaveEvent event;
        QCoreApplication::sendEvent(window, &event);
    }
    Q_INVOKABLE void drop(QQuickWindow* window, const QPointF& at) {
        QDropEvent event(at, Qt::CopyAction, m_data.get(), Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(window, &event);
    }

private:
    std::unique_ptr<QMimeData> m_data;
};

// What is asked to open addresses instead of the desktop.
class Opener : public QObject {
    Q_OBJECT
    Q_PROPERTY(QStringList opened MEMBER m_opened)

public:
    Opener() {
        for (const char* scheme : schemes)
            QDesktopServices::setUrlHandler(QString::fromLatin1(scheme), this, "open");
    }
    ~Opener() override {
        for (const char* scheme : schemes)
            QDesktopServices::unsetUrlHandler(QString::fromLatin1(scheme));
    }
    Q_INVOKABLE void open(const QUrl& url) { m_opened.append(url.toString()); }

private:
    static constexpr const char* schemes[] = {"http", "https", "mailto", "file", "javascript", "ftp"};

    QStringList m_opened;
};

class Setup : public QObject {
    Q_OBJECT

public slots:
    void qmlEngineAvailable(QQmlEngine* engine) {
        engine->rootContext()->setContextProperty("keyboard", &m_keyboard);
        engine->rootContext()->setContextProperty("dragging", &m_dragging);
        engine->rootContext()->setContextProperty("markdown", &m_markdown);
        engine->rootContext()->setContextProperty("opener", &m_opener);
        connect(engine, &QQmlEngine::warnings, this, [](const QList<QQmlError>& warnings) {
            for (const QQmlError& warning : warnings)
                qFatal("QML warning: %s", qUtf8Printable(warning.toString()));
        });
    }

private:
    Keyboard m_keyboard;
    Dragging m_dragging;
    Korvi::MarkdownValues m_markdown;
    Opener m_opener;
};

QUICK_TEST_MAIN_WITH_SETUP(views, Setup)

#include "ViewsTest.moc"
