#pragma once

#include "Stage.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions>

namespace Korvi {

// What Stage does in an image, in a window of a display with OpenGL. A frame is settled, rendered and presented in the main
// thread, so that its parts can be told apart. OpenGL without a GPU works in threads of its own, so drawing is what all
// threads spend together.
class RealWindow {
public:
    RealWindow(const char* qml, QObject* messages) {
        QQmlComponent component(&m_engine);
        component.setData(qml, QUrl(QStringLiteral("qrc:/bench.qml")));
        m_root.reset(qobject_cast<QQuickItem*>(
            component.createWithInitialProperties({{QStringLiteral("messages"), QVariant::fromValue(messages)}})));
        if (!m_root)
            qFatal("%s", qUtf8Printable(component.errorString()));
        m_root->setParentItem(m_window.contentItem());
        m_root->setSize({1200, 800});
        m_window.resize(1200, 800);
        QObject::connect(&m_window, &QQuickWindow::beforeSynchronizing, &m_window, [this] {
            m_settled = processorTime();
            m_settledAll = processorTimeOfAllThreads();
        });
        QObject::connect(&m_window, &QQuickWindow::afterRendering, &m_window, [this] {
            if (m_renderer.isEmpty())
                m_renderer = reinterpret_cast<const char*>(
                    QOpenGLContext::currentContext()->functions()->glGetString(GL_RENDERER));
        });
        QObject::connect(&m_window, &QQuickWindow::frameSwapped, &m_window, [this] { ++m_frames; });
        m_window.show();
        waitForFrame();
    }

    QQuickItem* find(const char* objectName) const {
        return m_root->findChild<QQuickItem*>(QString::fromLatin1(objectName));
    }
    const QByteArray& renderer() const { return m_renderer; }

    template <class Change>
    Stage::Frame frame(Change change) {
        const double start = processorTime();
        change();
        m_window.update();
        waitForFrame();
        return {m_settled - start, processorTimeOfAllThreads() - m_settledAll};
    }

    void rest() {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

private:
    static double processorTimeOfAllThreads() {
        timespec time;
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
    }
    void waitForFrame() {
        for (const int last = m_frames; m_frames == last;)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    QQmlEngine m_engine;
    QQuickWindow m_window;
    std::unique_ptr<QQuickItem> m_root;
    QByteArray m_renderer;
    double m_settled = 0;
    double m_settledAll = 0;
    int m_frames = 0;
};

inline void useWindow() {
    qputenv("QT_QPA_PLATFORM", "xcb");
    qputenv("QSG_RENDER_LOOP", "basic");
    qputenv("QT_QPA_UPDATE_IDLE_TIME", "0"); // the next frame at once
    qunsetenv("QT_QUICK_BACKEND");
}

}
