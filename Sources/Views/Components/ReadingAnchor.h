#pragma once

#include <QPointer>
#include <QQuickItem>

namespace Korvi {

// What is read at the upper edge of the view, to be found there again after anything above or around it took another
// size: the row, and in it a line of text, or, where no text is in view, the innermost item that reaches the edge.
class ReadingAnchor {
public:
    int row() const { return m_row; } // -1 without one

    // The first whole line of text between these heights below the top of the row; false without one. A formula or an
    // image before it that has yet to get its size then grows out of the view instead of pushing the text down.
    // `offset` is how far the edge lies below the top of the row.
    bool recordText(int row, qreal offset, qreal from, qreal to, QQuickItem& item);
    // Whatever is `reading` below the top of the row; `item` is the row's, or null.
    void record(int row, qreal offset, qreal reading, QQuickItem* item);
    void clear() { *this = {}; }
    // How far the edge lies below the top of the row now.
    qreal offset(const QQuickItem* item) const;

    // Takes over where everything stands now; false if the edge is no longer where this says, or if there is more to hold
    // on to than there was, so that recording anew is due.
    bool settle(qreal offset, const QQuickItem* item);

    void noteInsertion(int first, int count);
    void noteRemoval(int first, int count);

private:
    qreal leafY(const QQuickItem& item) const;
    bool isIn(const QQuickItem* item) const;

    int m_row = -1;
    qreal m_offset = 0;
    QPointer<QQuickItem> m_leaf; // the innermost item there
    bool m_aboveRow = false;     // what is read there is the row's beginning
    qreal m_leafY = 0;           // of what is anchored to, below the top of the row
    int m_textPosition = -1;     // of the line, in a leaf that is a text
};

}
