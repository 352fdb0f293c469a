#include "ArtifactPreview.h"

#include "ArtifactPages.h"

#include <QCursor>
#include <QDir>
#include <QQuickWindow>
#include <QSGImageNode>

namespace Korvi {

using namespace Qt::Literals;

namespace {

// Memory, where the system has a place for that.
QString placeForFrames() {
    const QString memory = u"/dev/shm"_s;
    return (QFileInfo(memory).isWritable() ? memory : QDir::tempPath()) + u"/korvi-preview-XXXXXX"_s;
}

}

ArtifactPreview::ArtifactPreview(QQuickItem* parent)
    : QQuickItem(parent) {
    setFlag(ItemHasContents);
    setFlag(ItemIsFocusScope, false);
    setAcceptedMouseButtons(Qt::LeftButton | Qt::MiddleButton | Qt::RightButton);
    setAcceptHoverEvents(true);
    setActiveFocusOnTab(true);
    for (QTimer* timer : {&m_opening, &m_resizing, &m_limit})
        timer->setSingleShot(true);
    connect(&m_opening, &QTimer::timeout, this, &ArtifactPreview::open);
    connect(&m_resizing, &QTimer::timeout, this, &ArtifactPreview::resize);
    connect(&m_limit, &QTimer::timeout, this, &ArtifactPreview::fail);
    connect(this, &ArtifactPreview::kindChanged, this, [this] {
        if (m_process)
            m_opening.start(settleTime);
    });
}

ArtifactPreview::~ArtifactPreview() = default;

void ArtifactPreview::setText(const QString& text) {
    if (text == m_text)
        return;
    m_text = text;
    emit textChanged();
    if (m_process)
        m_opening.start(settleTime);
}

void ArtifactPreview::componentComplete() {
    QQuickItem::componentComplete();
    start();
}

void ArtifactPreview::restart() {
    m_process.reset();
    start();
}

void ArtifactPreview::start() {
    if (!isComponentComplete() || m_process || width() < 1 || height() < 1)
        return;
    setStatus(Starting);
    m_isOpened = false;
    m_folder = std::make_unique<QTemporaryDir>(placeForFrames());
    m_process = std::make_unique<PreviewProcess>();
    connect(m_process.get(), &PreviewProcess::received, this, &ArtifactPreview::take);
    // Not from inside the process's own signal.
    connect(m_process.get(), &PreviewProcess::ended, this, &ArtifactPreview::fail, Qt::QueuedConnection);
    if (!m_folder->isValid() || !m_process->start()) {
        fail();
        return;
    }
    m_limit.start(patience);
    resize();
    open();
}

void ArtifactPreview::open() {
    m_opening.stop();
    if (!m_process)
        return;
    m_isOpened = true;
    m_process->send({{u"open"_s, ArtifactPages::previewPage(m_kind.toLower(), m_text)}});
}

qreal ArtifactPreview::ratio() const {
    return window() ? window()->effectiveDevicePixelRatio() : 1;
}

void ArtifactPreview::resize() {
    const QSize size = (QSizeF(width(), height()) * ratio()).toSize();
    if (!m_process || size.isEmpty())
        return;
    // Another file for another size: what is under way still goes into the old one.
    m_file.close();
    m_memory = nullptr;
    if (!m_file.fileName().isEmpty())
        m_file.remove();
    m_size = size;
    m_file.setFileName(m_folder->filePath(QString::number(++m_files)));
    const qint64 bytes = qint64(size.width()) * size.height() * 4;
    if (!m_file.open(QIODevice::ReadWrite) || !m_file.resize(bytes) || !(m_memory = m_file.map(0, bytes))) {
        fail();
        return;
    }
    m_process->send({{u"size"_s,
        QJsonObject{{u"file"_s, m_file.fileName()}, {u"width"_s, size.width()}, {u"height"_s, size.height()},
            {u"ratio"_s, ratio()}}}});
}

void ArtifactPreview::take(const QJsonObject& message) {
    if (const QJsonValue frame = message["frame"_L1]; frame.isObject())
        readFrame({frame["width"_L1].toInt(), frame["height"_L1].toInt()});
    if (const QJsonValue loaded = message["loaded"_L1]; loaded.isBool()) {
        m_limit.stop();
        const bool isFirst = m_status != Ready;
        setStatus(loaded.toBool() ? Ready : Failed);
        if (isFirst && hasActiveFocus())
            sendFocus(Qt::OtherFocusReason);
    }
    if (message.contains("left"_L1))
        leave(message["left"_L1] == "forward"_L1);
}

void ArtifactPreview::readFrame(const QSize& size) {
    // One of another size came before ours was heard of.
    if (m_memory && size == m_size) {
        m_frame = QImage(m_memory, size.width(), size.height(), QImage::Format_RGB32).copy();
        m_isFrameNew = true;
        emit frameChanged();
        update();
    }
    m_process->send({{u"taken"_s, true}});
}

void ArtifactPreview::fail() {
    m_limit.stop();
    m_process.reset();
    setStatus(Failed);
}

void ArtifactPreview::setStatus(Status status) {
    if (status == m_status)
        return;
    m_status = status;
    emit statusChanged();
}

void ArtifactPreview::geometryChange(const QRectF& now, const QRectF& before) {
    QQuickItem::geometryChange(now, before);
    if (now.size() == before.size())
        return;
    if (!m_process && m_status == Starting)
        start();
    else
        m_resizing.start(settleTime);
}

QSGNode* ArtifactPreview::updatePaintNode(QSGNode* old, UpdatePaintNodeData*) {
    auto* node = static_cast<QSGImageNode*>(old);
    if (m_frame.isNull()) {
        delete node;
        return nullptr;
    }
    if (!node) {
        node = window()->createImageNode();
        node->setOwnsTexture(true);
        node->setFiltering(QSGTexture::Linear);
        m_isFrameNew = true;
    }
    if (m_isFrameNew)
        node->setTexture(window()->createTextureFromImage(m_frame, QQuickWindow::TextureIsOpaque));
    m_isFrameNew = false;
    // What is not yet drawn for a new size keeps its own.
    const QSizeF size = QSizeF(m_frame.size()) / ratio();
    node->setRect(QRectF(QPointF(), size.boundedTo({width(), height()})));
    node->setSourceRect(QRectF(QPointF(), size.boundedTo({width(), height()}) * ratio()));
    return node;
}

void ArtifactPreview::sendInput(QJsonObject event) {
    if (m_process && m_status == Ready)
        m_process->send({{u"input"_s, std::move(event)}});
}

void ArtifactPreview::sendPointer(const char* type, QMouseEvent* event) {
    const QPointF place = event->position() * ratio();
    sendInput({{u"type"_s, QLatin1StringView(type)}, {u"x"_s, place.x()}, {u"y"_s, place.y()},
        {u"button"_s, static_cast<int>(event->button())}, {u"buttons"_s, static_cast<int>(event->buttons())},
        {u"modifiers"_s, static_cast<int>(event->modifiers())}});
}

void ArtifactPreview::mousePressEvent(QMouseEvent* event) {
    forceActiveFocus(Qt::MouseFocusReason);
    sendPointer("press", event);
}

void ArtifactPreview::mouseReleaseEvent(QMouseEvent* event) {
    sendPointer("release", event);
}

void ArtifactPreview::mouseMoveEvent(QMouseEvent* event) {
    sendPointer("move", event);
}

void ArtifactPreview::mouseDoubleClickEvent(QMouseEvent* event) {
    sendPointer("doubleClick", event);
}

void ArtifactPreview::hoverMoveEvent(QHoverEvent* event) {
    const QPointF place = event->position() * ratio();
    sendInput({{u"type"_s, u"move"_s}, {u"x"_s, place.x()}, {u"y"_s, place.y()}, {u"button"_s, 0}, {u"buttons"_s, 0},
        {u"modifiers"_s, static_cast<int>(event->modifiers())}});
}

void ArtifactPreview::hoverLeaveEvent(QHoverEvent*) {
    sendInput({{u"type"_s, u"leave"_s}});
}

void ArtifactPreview::wheelEvent(QWheelEvent* event) {
    const QPointF place = event->position() * ratio();
    sendInput(
        {{u"type"_s, u"wheel"_s}, {u"x"_s, place.x()}, {u"y"_s, place.y()}, {u"angleX"_s, event->angleDelta().x()},
            {u"angleY"_s, event->angleDelta().y()}, {u"pixelX"_s, event->pixelDelta().x()},
            {u"pixelY"_s, event->pixelDelta().y()}, {u"modifiers"_s, static_cast<int>(event->modifiers())}});
}

void ArtifactPreview::sendKey(const char* type, QKeyEvent* event) {
    sendInput({{u"type"_s, QLatin1StringView(type)}, {u"key"_s, event->key()}, {u"text"_s, event->text()},
        {u"modifiers"_s, static_cast<int>(event->modifiers())}, {u"repeats"_s, event->isAutoRepeat()}});
}

void ArtifactPreview::keyPressEvent(QKeyEvent* event) {
    // The ways out stay the client's, whatever a page does with its keys. Tab goes through a page that is there.
    const bool isTab = event->key() == Qt::Key_Tab || event->key() == Qt::Key_Backtab;
    const bool isOurs = event->key() == Qt::Key_Escape || event->key() == Qt::Key_F6 ||
        event->modifiers() & Qt::ControlModifier || (isTab && m_status != Ready);
    event->setAccepted(!isOurs);
    if (!isOurs)
        sendKey("keyPress", event);
}

void ArtifactPreview::leave(bool forward) {
    if (!hasActiveFocus())
        return;
    if (QQuickItem* next = nextItemInFocusChain(forward))
        next->forceActiveFocus(forward ? Qt::TabFocusReason : Qt::BacktabFocusReason);
}

void ArtifactPreview::keyReleaseEvent(QKeyEvent* event) {
    sendKey("keyRelease", event);
}

void ArtifactPreview::focusInEvent(QFocusEvent* event) {
    QQuickItem::focusInEvent(event);
    sendFocus(event->reason());
}

void ArtifactPreview::sendFocus(Qt::FocusReason reason) {
    sendInput({{u"type"_s, u"focus"_s}, {u"reason"_s, static_cast<int>(reason)}});
}

void ArtifactPreview::focusOutEvent(QFocusEvent* event) {
    QQuickItem::focusOutEvent(event);
    sendInput({{u"type"_s, u"blur"_s}});
}

}
