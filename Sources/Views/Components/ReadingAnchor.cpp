#include "ReadingAnchor.h"

#include <QQuickTextDocument>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace Korvi {

namespace {

QTextDocument* textOf(const QQuickItem& item) {
    const auto* document = item.property("textDocument").value<QQuickTextDocument*>();
    return document ? document->textDocument() : nullptr;
}

// The innermost visible item that `y`, below the top of `item`, falls into; where there is nothing yet, the next one.
QQuickItem* leafAt(QQuickItem* item, qreal y) {
    while (!textOf(*item)) {
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

struct Line {
    int position = -1; // of its first character
    int end = -1;      // of the next line's
    qreal top = 0;
    qreal baseline = 0;
};

Line lineOf(QQuickItem& text, const QTextDocument& document, int position) {
    const QTextBlock block = document.findBlock(position);
    const QTextLine line =
        block.isValid() ? block.layout()->lineForTextPosition(position - block.position()) : QTextLine();
    if (!line.isValid())
        return {};
    QRectF place;
    QMetaObject::invokeMethod(&text, "positionToRectangle", Q_RETURN_ARG(QRectF, place), Q_ARG(int, position));
    const bool isLast = line.lineNumber() + 1 == block.layout()->lineCount();
    const int begin = block.position() + line.textStart();
    return {begin, isLast ? block.position() + block.length() : begin + line.textLength(), place.y(),
        place.y() + line.ascent()};
}

// A line of text in an item, and how far below the item's top it begins.
struct Place {
    QQuickItem* text = nullptr;
    int position = -1;
    qreal top = 0;
};

// Replaces `best` by a higher line that begins between these heights below the top of `item`, itself `above` further down.
void findFirstLine(QQuickItem& item, qreal from, qreal to, qreal above, Place& best) {
    if (const QTextDocument* document = textOf(item)) {
        Line line = lineOf(item, *document, textPositionAt(item, std::max(0.0, from)));
        if (line.position >= 0 && line.top < from) // the edge cuts it
            line = line.end < document->characterCount() ? lineOf(item, *document, line.end) : Line();
        if (line.position >= 0 && line.top >= from && line.top < to && (!best.text || above + line.top < best.top))
            best = {&item, line.position, above + line.top};
        return;
    }
    for (QQuickItem* child : item.childItems()) {
        const qreal top = child->y();
        if (child->isVisible() && top < to && top + child->height() > from)
            findFirstLine(*child, from - top, to - top, above + top, best);
    }
}

}

bool ReadingAnchor::recordText(int row, qreal offset, qreal from, qreal to, QQuickItem& item) {
    Place first;
    findFirstLine(item, from, to, 0, first);
    if (!first.text)
        return false;
    *this = {};
    m_row = row;
    m_offset = offset;
    m_leaf = first.text;
    m_textPosition = first.position;
    m_leafY = leafY(item);
    return true;
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
    if (textOf(*m_leaf))
        m_textPosition = textPositionAt(*m_leaf, std::max(0.0, reading - top));
    m_leafY = leafY(*item);
}

qreal ReadingAnchor::leafY(const QQuickItem& item) const {
    const qreal y = m_leaf->mapToItem(&item, {}).y();
    const QTextDocument* document = m_textPosition < 0 ? nullptr : textOf(*m_leaf);
    return document ? y + lineOf(*m_leaf, *document, m_textPosition).baseline : y;
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
