#pragma once

#include <QGuiApplication>
#include <QImage>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickRenderControl>
#include <QQuickRenderTarget>
#include <QQuickWindow>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <memory>
#include <vector>

namespace Korvi {

// Milliseconds of this thread.
inline double processorTime() {
    timespec time;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

// A window of 1200 x 800 that is drawn by the software scene graph into an image when told, so that each part of a
// frame can be timed: in processor time of the one thread, which what else runs on the machine does not lengthen.
class Stage {
public:
    struct Frame {
        double update = 0; // milliseconds until everything is where it belongs
        double draw = 0;   // from there to pixels
    };

    // `qml` is an Item with a property `messages`.
    Stage(
        const char* qml, QObject* messages, const std::function<void(QQmlEngine&)>& prepare = [](QQmlEngine&) {})
        : m_window(&m_control)
        , m_image(1200, 800, QImage::Format_ARGB32_Premultiplied) {
        prepare(m_engine);
        QQmlComponent component(&m_engine);
        component.setData(qml, QUrl(QStringLiteral("qrc:/bench.qml")));
        m_root.reset(qobject_cast<QQuickItem*>(
            component.createWithInitialProperties({{QStringLiteral("messages"), QVariant::fromValue(messages)}})));
        if (!m_root)
            qFatal("%s", qUtf8Printable(component.errorString()));
        m_window.setGeometry(0, 0, m_image.width(), m_image.height());
        m_root->setParentItem(m_window.contentItem());
        m_root->setSize(m_image.size());
        m_window.setRenderTarget(QQuickRenderTarget::fromPaintDevice(&m_image));
    }

    QQuickItem* find(const char* objectName) const {
        return *objectName ? m_root->findChild<QQuickItem*>(QString::fromLatin1(objectName)) : m_root.get();
    }

    QQuickWindow& window() { return m_window; }

    template <class Change>
    Frame frame(Change change) {
        const double start = processorTime();
        change();
        m_control.polishItems();
        const double update = processorTime() - start;
        m_control.beginFrame();
        m_control.sync();
        m_control.render();
        m_control.endFrame();
        return {update, processorTime() - start - update};
    }

    // What a running application does between two frames.
    void rest() {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

private:
    QQmlEngine m_engine;
    QQuickRenderControl m_control;
    QQuickWindow m_window;
    QImage m_image;
    std::unique_ptr<QQuickItem> m_root;
};

inline void useOffscreen() {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
}

inline double quantile(std::vector<double> values, double q) {
    std::sort(values.begin(), values.end());
    return values[std::min(values.size() - 1, static_cast<std::size_t>(static_cast<double>(values.size()) * q))];
}

}
