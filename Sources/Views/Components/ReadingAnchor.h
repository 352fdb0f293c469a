#pragma once

#include <QPointer>
#include <QQuickItem>

namespace Korvi {

// What is read at the upper edge of the view, to be found there again after anything above or around it took another
// size: the row, the innermost item in it that reaches the edge, and in a text the character.
class ReadingAnchor {
public:
    int row() const { return m_row; } // -1 without one

    // `offset` is how far the edge lies below the top of the row, and `reading` how far what is read there does; `item`
    // is the row's, or null.
    void record(int row, qreal offset, qreal reading, QQuickItem* item);
    void clear() { *this = {}; }
    // How far the edge lies below the top of the row now.
    qreal offset(const QQuickItem* item) const;

    void noteInsertion(int first, int count);
    void noteRemoval(int first, int count);

private:
    int m_row = -1;
    qreal m_offset = 0;
    QPointer<QQuickItem> m_leaf; // the innermost item there
    qreal m_leafY = 0;           // of what is anchored to, below the top of the row
    int m_textPosition = -1;     // in a leaf that is a text
};

}
