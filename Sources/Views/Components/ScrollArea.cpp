#include "ScrollArea.h"

#include <QScopedValueRollback>

namespace Korvi {

ScrollArea::ScrollArea(QQuickItem* flickable, QObject* parent)
    : QObject(parent)
    , m_item(flickable)
    , m_contentY(property("contentY"))
    , m_contentHeight(property("contentHeight"))
    , m_topMargin(property("topMargin"))
    , m_moving(property("moving")) {
    connect(flickable, SIGNAL(contentYChanged()), this, SLOT(contentYMoved()));
    connect(flickable, SIGNAL(heightChanged()), this, SLOT(heightMoved()));
    connect(flickable, SIGNAL(movingChanged()), this, SLOT(movingMoved()));
}

QMetaProperty ScrollArea::property(const char* name) const {
    const QMetaObject* meta = m_item->metaObject();
    return meta->property(meta->indexOfProperty(name));
}

qreal ScrollArea::width() const {
    return m_item ? m_item->width() : 0;
}

qreal ScrollArea::height() const {
    return m_item ? m_item->height() : 0;
}

qreal ScrollArea::contentY() const {
    return m_item ? m_contentY.read(m_item).toReal() : 0;
}

bool ScrollArea::moving() const {
    return m_item && m_moving.read(m_item).toBool();
}

void ScrollArea::arrange(qreal origin, qreal contentHeight, qreal contentY) {
    if (!m_item)
        return;
    const QScopedValueRollback guard(m_arranging, true);
    m_arrangedHeight = height();
    write(m_topMargin, -origin);
    write(m_contentHeight, contentHeight + origin);
    write(m_contentY, contentY);
}

void ScrollArea::write(const QMetaProperty& property, qreal value) {
    if (property.read(m_item).toReal() != value)
        property.write(m_item, value);
}

void ScrollArea::stop() {
    if (moving())
        QMetaObject::invokeMethod(m_item, "cancelFlick");
}

void ScrollArea::contentYMoved() {
    if (!m_arranging && m_arrangedHeight == height())
        emit scrolled();
}

void ScrollArea::heightMoved() {
    emit resized();
}

void ScrollArea::movingMoved() {
    if (!moving())
        emit movementEnded();
}

}
