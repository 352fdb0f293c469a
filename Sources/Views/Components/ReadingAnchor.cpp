#include "ReadingAnchor.h"

#include <QMetaMethod>

#include <algorithm>
#include <cmath>

namespace Korvi {

namespace {

bool isText(const QQuickItem& item) {
    return item.metaObject()->indexOfMethod("positionToRectangle(int)") >= 0;
}

// The innermost visible item that `y`, below the top of `item`, falls into; where there is nothing yet, the next one.
QQuickItem* leafAt(QQuickItem* item, qreal y) {
    while (!isText(*item)) {
        QQuickItem* inner = nullptr;
        QQuickItem* next = nullptr;
        for (QQuickItem* child : item->childItems()) {
            if (!child->isVisible() || child->height() <= 0)
                continue;
            if (child->y() <= y && y < child->y() + child->height())
                inner = child;
            else if (child->y() > y && (!next || child->y() < next->y()))
                next = child;
        }
        if (!inner)
            inner = next;
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

}

void ReadingAnchor::record(int row, qreal offset, qreal reading, QQuickItem* item) {
    *this = {};
    m_row = row;
    m_offset = offset;
    m_aboveRow = reading <= 0;
    if (!item)
        return;
    QQuickItem* leaf = leafAt(item, std::max(reading, 0.0));
    const qreal top = leaf->mapToItem(item, {}).y();
    if (m_aboveRow && top <= 0)
        return; // the whole row is below the edge, and its beginning holds it
    m_leaf = leaf;
    if (isText(*m_leaf))
        m_textPosition = textPositionAt(*m_leaf, std::max(0.0, reading - top));
    m_leafY = leafY(*item);
}

qreal ReadingAnchor::leafY(const QQuickItem& item) const {
    const qreal y = m_leaf->mapToItem(&item, {}).y();
    return m_textPosition < 0 ? y : y + yOfTextPosition(*m_leaf, m_textPosition);
}

bool ReadingAnchor::isIn(const QQuickItem* item) const {
    return item && m_leaf && m_leaf->isVisible() && (m_leaf == item || item->isAncestorOf(m_leaf));
}

qreal ReadingAnchor::offset(const QQuickItem* item) const {
    return isIn(item) ? m_offset + std::round(leafY(*item) - m_leafY) : m_offset;
}

bool ReadingAnchor::settle(qreal offset, const QQuickItem* item) {
    if (m_row < 0 || this->offset(item) != offset)
        return false;
    if (!isIn(item))
        return m_aboveRow || !item;
    m_leafY += offset - m_offset; // by whole pixels: fractions must not add up
    m_offset = offset;
    return true;
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
        m_aboveRow = true;
    }
}

}
