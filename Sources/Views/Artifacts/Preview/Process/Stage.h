#pragma once

#include "SharedFrame.h"

#include <QJsonObject>
#include <QObject>
#include <QQmlEngine>
#include <QQuickRenderControl>
#include <QQuickWebEngineProfile>
#include <QQuickWindow>
#include <QTimer>

#include <array>
#include <functional>
#include <memory>

namespace Korvi {

class BundleHandler;
class RequestGate;

// The page that is shown, in a window that is on no screen: what is to be seen goes into a file that the client reads,
// what the user does comes as messages. Sizes and places are device pixels.
class Stage : public QObject {
    Q_OBJECT

public:
    using Tell = std::function<void(const QJsonObject&)>;

    static constexpr int frameTime = 16; // milliseconds, at least, between two frames

    Stage(BundleHandler& bundle, RequestGate& gate, Tell tell, QObject* parent = nullptr);
    ~Stage() override;

    void open(const QString& page);
    // {"file", "width", "height", "ratio"}
    void resize(const QJsonObject& size);
    // {"type": "press" | "release" | "move" | "leave" | "wheel" | "keyPress" | "keyRelease" | "focus" | "blur", ...}
    // Tab goes through the page; where it would go out of it, {"left": "forward" | "backward"} is told.
    void input(const QJsonObject& event);
    // The client has read the last frame.
    void taken();

private slots:
    void loadingChanged();
    void crashed();

private:
    void draw();
    void pointer(const QJsonObject& event, QEvent::Type type);
    void wheel(const QJsonObject& event);
    void key(const QJsonObject& event, QEvent::Type type);
    void takeFocus(Qt::FocusReason reason);
    void dropFocus();
    void addEdge(std::size_t edge);

    BundleHandler& m_bundle;
    Tell m_tell;
    QQuickRenderControl m_control;
    QQuickWindow m_window;
    QQmlEngine m_engine;
    QQuickWebEngineProfile m_profile; // keeps nothing on disk
    // What the keyboard goes on to when it has gone through the page.
    std::array<std::unique_ptr<QQuickItem>, 2> m_edges;
    std::unique_ptr<QQuickItem> m_view;
    SharedFrame m_frame;
    QImage m_image;
    qreal m_ratio = 1;
    QTimer m_next;
    bool m_hasFocus = false;
    bool m_isDirty = false;
    bool m_isWaiting = false; // for the client to read
};

}
