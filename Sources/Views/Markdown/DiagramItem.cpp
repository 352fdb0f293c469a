#include "DiagramItem.h"

#include <QPainter>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QSGImageNode>
#include <QSaveFile>
#include <QStandardPaths>

namespace Korvi {

DiagramItem::DiagramItem(QQuickItem* parent)
    : QQuickItem(parent) {
    setFlag(ItemHasContents);
}

void DiagramItem::setCode(const QString& code) {
    if (code == m_wanted.code)
        return;
    m_wanted.code = code;
    m_shown = nullptr;
    m_isMissed = false;
    setImplicitSize(0, 0);
    update();
    emit codeChanged();
    emit changed();
    fetch();
}

void DiagramItem::setIsDark(bool isDark) {
    if (isDark == m_wanted.isDark)
        return;
    m_wanted.isDark = isDark;
    emit isDarkChanged();
    fetch();
}

void DiagramItem::setAvailableWidth(qreal width) {
    if (width == m_availableWidth)
        return;
    m_availableWidth = width;
    m_wanted.width = static_cast<int>(width);
    emit availableWidthChanged();
    fetchWhenCalm();
}

void DiagramItem::setDrawingScale(qreal scale) {
    if (scale == m_wanted.scale)
        return;
    m_wanted.scale = scale;
    emit drawingScaleChanged();
    fetchWhenCalm();
}

void DiagramItem::setMagnification(qreal magnification) {
    if (magnification == m_magnification)
        return;
    m_magnification = magnification;
    emit magnificationChanged();
    fetchWhenCalm();
}

qreal DiagramItem::ratio() const {
    return (window() ? window()->effectiveDevicePixelRatio() : 1) * m_magnification;
}

QUrl DiagramItem::suggestedFile() const {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
    return QUrl::fromLocalFile(folder + QStringLiteral("/diagram.png"));
}

bool DiagramItem::savePng(const QUrl& file, const QColor& ground) const {
    if (!isReady())
        return false;
    QImage page(m_shown->image.size(), QImage::Format_RGB32);
    page.fill(ground);
    QPainter painter(&page);
    painter.drawImage(page.rect(), m_shown->image);
    painter.end();
    QSaveFile output(file.toLocalFile());
    return output.open(QIODevice::WriteOnly) && page.save(&output, "PNG") && output.commit();
}

void DiagramItem::componentComplete() {
    QQuickItem::componentComplete();
    m_engine = FormulaEngine::of(qmlEngine(this));
    fetch();
}

void DiagramItem::itemChange(ItemChange change, const ItemChangeData& data) {
    QQuickItem::itemChange(change, data);
    if (change == ItemSceneChange || change == ItemDevicePixelRatioHasChanged)
        fetch();
}

void DiagramItem::fetchWhenCalm() {
    m_wanted.ratio = ratio();
    if (!isComponentComplete() || !m_engine || !m_shown || !m_shown->error.isEmpty())
        fetch();
    else if (m_engine->cachedDiagram(m_wanted))
        fetch();
    else
        m_calm = m_engine->scheduler().after(calm, [this] { fetch(); });
}

void DiagramItem::fetch() {
    m_calm.cancel();
    if (!isComponentComplete() || !window())
        return;
    m_wanted.ratio = ratio();
    if (m_wanted.code.isEmpty() || m_wanted.width <= 0)
        return;
    if (!m_engine) {
        m_isMissed = true;
        emit changed();
        return;
    }
    if (const auto known = m_engine->cachedDiagram(m_wanted)) {
        show(known);
        return;
    }
    m_engine->requestDiagram(m_wanted, this, [this, wanted = m_wanted](const FormulaEngine::Picture& picture) {
        if (wanted == m_wanted)
            show(picture);
    });
}

void DiagramItem::show(const FormulaEngine::Picture& picture) {
    m_isMissed = !picture && !m_shown;
    if (picture) {
        m_shown = picture;
        m_isNewImage = true;
        setImplicitSize(isReady() ? m_shown->size.width() : 0, isReady() ? m_shown->size.height() : 0);
        update();
    }
    emit changed();
}

QSGNode* DiagramItem::updatePaintNode(QSGNode* old, UpdatePaintNodeData*) {
    auto* node = static_cast<QSGImageNode*>(old);
    if (!isReady() || width() <= 0 || height() <= 0) {
        delete node;
        return nullptr;
    }
    if (!node) {
        node = window()->createImageNode();
        node->setOwnsTexture(true);
        node->setFiltering(QSGTexture::Linear);
        m_isNewImage = true;
    }
    if (std::exchange(m_isNewImage, false))
        node->setTexture(window()->createTextureFromImage(m_shown->image));
    node->setRect(boundingRect());
    return node;
}

}
