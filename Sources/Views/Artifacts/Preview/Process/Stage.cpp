#include "Stage.h"

#include "BundleHandler.h"
#include "RequestGate.h"
#include "WebPage.h"

#include <QCoreApplication>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QQmlComponent>
#include <QQuickItem>
#include <QQuickRenderTarget>
#include <QWheelEvent>

namespace Korvi {

using namespace Qt::Literals;

namespace {

QPointF place(const QJsonObject& event) {
    return {event["x"_L1].toDouble(), event["y"_L1].toDouble()};
}

Qt::KeyboardModifiers modifiers(const QJsonObject& event) {
    return Qt::KeyboardModifiers(event["modifiers"_L1].toInt());
}

}

Stage::Stage(BundleHandler& bundle, RequestGate& gate, Tell tell, QObject* parent)
    : QObject(parent)
    , m_bundle(bundle)
    , m_tell(std::move(tell))
    , m_window(&m_control) {
    m_profile.setOffTheRecord(true);
    m_profile.setHttpCacheType(QQuickWebEngineProfile::NoCache);
    m_profile.setPersistentCookiesPolicy(QQuickWebEngineProfile::NoPersistentCookies);
    m_profile.setUrlRequestInterceptor(&gate);
    m_profile.installUrlSchemeHandler(WebPage::scheme, &bundle);
    // Nobody takes up a download, and so it is cancelled.

    m_next.setSingleShot(true);
    connect(&m_next, &QTimer::timeout, this, &Stage::draw);
    const auto changed = [this] {
        m_isDirty = true;
        if (!m_isWaiting && !m_next.isActive())
            m_next.start(frameTime);
    };
    connect(&m_control, &QQuickRenderControl::renderRequested, this, changed);
    connect(&m_control, &QQuickRenderControl::sceneChanged, this, changed);
    m_window.setColor(Qt::white);
}

Stage::~Stage() {
    m_control.disconnect(this); // it says that the scene changes, to its end
    m_view.reset();
}

void Stage::open(const QString& page) {
    const QUrl address = m_bundle.addPage(u"artifact.html"_s, page);
    QQmlComponent component(&m_engine, QUrl(u"qrc:/korvi/preview/PreviewPage.qml"_s));
    m_view.reset(qobject_cast<QQuickItem*>(component.createWithInitialProperties(
        {{u"page"_s, address}, {u"profile"_s, QVariant::fromValue(&m_profile)}, {u"zoomFactor"_s, m_ratio}})));
    if (!m_view) {
        qWarning("%s", qUtf8Printable(component.errorString()));
        m_tell({{u"loaded"_s, false}});
        return;
    }
    connect(m_view.get(), SIGNAL(loadingChanged(QWebEngineLoadingInfo)), this, SLOT(loadingChanged()));
    connect(m_view.get(), SIGNAL(renderProcessTerminated(RenderProcessTerminationStatus, int)), this, SLOT(crashed()));
    addEdge(0);
    m_view->setParentItem(m_window.contentItem());
    m_view->setSize(m_window.size());
    m_view->setActiveFocusOnTab(true);
    addEdge(1);
    if (m_hasFocus)
        takeFocus(Qt::OtherFocusReason);
}

void Stage::addEdge(std::size_t edge) {
    m_edges[edge] = std::make_unique<QQuickItem>(m_window.contentItem());
    QQuickItem* item = m_edges[edge].get();
    item->setActiveFocusOnTab(true);
    connect(item, &QQuickItem::activeFocusChanged, this, [this, item, edge] {
        if (item->hasActiveFocus())
            m_tell({{u"left"_s, edge == 0 ? u"backward"_s : u"forward"_s}});
    });
}

// By the reason the page knows whether to begin with its first element, its last one or the one it left.
void Stage::takeFocus(Qt::FocusReason reason) {
    m_hasFocus = true;
    if (m_view)
        m_view->forceActiveFocus(reason);
}

void Stage::dropFocus() {
    m_hasFocus = false;
    QFocusEvent focus(QEvent::FocusOut, Qt::OtherFocusReason);
    QCoreApplication::sendEvent(&m_window, &focus);
}

void Stage::resize(const QJsonObject& size) {
    const QSize pixels(size["width"_L1].toInt(), size["height"_L1].toInt());
    if (pixels.isEmpty())
        return;
    m_ratio = size["ratio"_L1].toDouble(1);
    m_frame.open(size["file"_L1].toString(), pixels);
    m_image = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
    m_image.fill(Qt::white);
    m_window.setGeometry(QRect(QPoint(), pixels));
    m_window.contentItem()->setSize(pixels);
    m_window.setRenderTarget(QQuickRenderTarget::fromPaintDevice(&m_image));
    if (m_view) {
        m_view->setSize(pixels);
        m_view->setProperty("zoomFactor", m_ratio);
    }
    m_isWaiting = false;
    m_isDirty = true;
    m_next.start(frameTime);
}

void Stage::taken() {
    m_isWaiting = false;
    if (m_isDirty && !m_next.isActive())
        m_next.start(frameTime);
}

void Stage::draw() {
    if (m_isWaiting || m_image.isNull())
        return;
    m_isDirty = false;
    m_control.polishItems();
    m_control.beginFrame();
    m_control.sync();
    m_control.render();
    m_control.endFrame();
    if (!m_frame.write(m_image))
        return;
    m_isWaiting = true;
    m_tell({{u"frame"_s, QJsonObject{{u"width"_s, m_image.width()}, {u"height"_s, m_image.height()}}}});
}

void Stage::loadingChanged() {
    if (!m_view->property("loading").toBool())
        m_tell({{u"loaded"_s, true}});
}

void Stage::crashed() {
    m_tell({{u"loaded"_s, false}});
}

void Stage::input(const QJsonObject& event) {
    struct Row {
        QLatin1StringView name;
        QEvent::Type type;
        void (Stage::*take)(const QJsonObject&, QEvent::Type);
    };
    static constexpr Row rows[] = {
        {QLatin1StringView("press"), QEvent::MouseButtonPress, &Stage::pointer},
        {QLatin1StringView("release"), QEvent::MouseButtonRelease, &Stage::pointer},
        {QLatin1StringView("doubleClick"), QEvent::MouseButtonDblClick, &Stage::pointer},
        {QLatin1StringView("move"), QEvent::MouseMove, &Stage::pointer},
        {QLatin1StringView("keyPress"), QEvent::KeyPress, &Stage::key},
        {QLatin1StringView("keyRelease"), QEvent::KeyRelease, &Stage::key},
    };
    const QString type = event["type"_L1].toString();
    for (const Row& row : rows) {
        if (type == row.name)
            (this->*row.take)(event, row.type);
    }
    if (type == "wheel"_L1) {
        wheel(event);
    } else if (type == "leave"_L1) {
        QEvent leave(QEvent::Leave);
        QCoreApplication::sendEvent(&m_window, &leave);
    } else if (type == "focus"_L1) {
        takeFocus(static_cast<Qt::FocusReason>(event["reason"_L1].toInt(Qt::OtherFocusReason)));
    } else if (type == "blur"_L1) {
        dropFocus();
    }
}

void Stage::pointer(const QJsonObject& event, QEvent::Type type) {
    QMouseEvent mouse(type, place(event), place(event), static_cast<Qt::MouseButton>(event["button"_L1].toInt()),
        Qt::MouseButtons(event["buttons"_L1].toInt()), modifiers(event));
    QCoreApplication::sendEvent(&m_window, &mouse);
}

void Stage::wheel(const QJsonObject& event) {
    const QPoint pixels(event["pixelX"_L1].toInt(), event["pixelY"_L1].toInt());
    const QPoint angle(event["angleX"_L1].toInt(), event["angleY"_L1].toInt());
    QWheelEvent wheel(
        place(event), place(event), pixels, angle, Qt::NoButton, modifiers(event), Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&m_window, &wheel);
}

void Stage::key(const QJsonObject& event, QEvent::Type type) {
    QKeyEvent key(
        type, event["key"_L1].toInt(), modifiers(event), event["text"_L1].toString(), event["repeats"_L1].toBool());
    QCoreApplication::sendEvent(&m_window, &key);
}

}
