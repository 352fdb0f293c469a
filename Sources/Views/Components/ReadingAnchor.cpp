#include "ReadingAnchor.h"

#include <QMetaMethod>

#include <algorithm>
#include <cmath>

namespace Korvi {

namespace {

bool isText(const QQuickItem& item) {
    return item.metaObject()->indexOfMethod("positionToRectangle(int)") >= 0;
}

// The innermost visible item that `y`, below the top of `item`, falls into.
QQuickItem* leafAt(QQuickItem* item, qreal y) {
    while (!isText(*item)) {
        QQuickItem* inner = nullptr;
        for (QQuickItem* child : item->childItems()) {
            if (child->isVisible() && child->y() <= y && y < child->y() + child->height())
                inner = child;
        }
        if (!inner)
            break;
        y -= inner->y();
        item = inner;
    }
    return item;
}

int textPositionAt(QQuickItem& text, qreal y) {
    int position = -1;
    QMetaObject::invokeMethod(&text, "positionAt", Q_RETURN_ARG(int, position), Q_ARG(qreal, 0), Q_ARG(qreal, y));
    return position;
}

qreal yOfTextPosition(QQuickItem& text, int position) {
    QRectF place;
    QMetaObject::invokeMethod(&text, "positionToRectangle", Q_RETURN_ARG(QRectF, place), Q_ARG(int, position));
    return place.y();
}

qreal yWithin(const QQuickItem& leaf, const QQuickItem* row) {
    return leaf.mapToItem(row, QPointF()).y();
}

}

void ReadingAnchor::record(int row, qreal offset, qreal reading, QQuickItem* item) {
    m_row = row;
    m_offset = offset;
    m_leaf = nullptr;
    m_textPosition = -1;
    if (!item || reading <= 0)
        return;
    m_leaf = leafAt(item, reading);
    m_leafY = yWithin(*m_leaf, item);
    if (isText(*m_leaf)) {
        m_textPosition = textPositionAt(*m_leaf, reading - m_leafY);
        m_leafY += yOfTextPosition(*m_leaf, m_textPosition);
    }
}

qreal ReadingAnchor::offset(const QQuickItem* item) const {
    if (!item || !m_leaf || !m_leaf->isVisible() || !(m_leaf == item || item->isAncestorOf(m_leaf)))
        return m_offset;
    qreal y = yWithin(*m_leaf, item);
    if (m_textPosition >= 0)
        y += yOfTextPosition(*m_leaf, m_textPosition);
    return m_offset + std::round(y - m_leafY);
}

void ReadingAnchor::noteInsertion(int first, int count) {
    if (m_row >= first)
        m_row += count;
}

void ReadingAnchor::noteRemoval(int first, int count) {
    if (m_row >= first + count) {
        m_row -= count;
    } else if (m_row >= first) { // the row that moves up to its place
        m_row = first;
        m_offset = std::min(m_offset, 0.0);
        m_leaf = nullptr;
        m_textPosition = -1;
    }
}

}
