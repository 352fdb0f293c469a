#pragma once

#include "Components/RowEstimate.h"

namespace Korvi {

// Guesses how high the rows of a table are from the length of their cells.
class TableHeights : public Korvi::RowEstimate { // qualified, for qmllint to know it
    Q_OBJECT
    QML_ELEMENT
    // Pixels.
    Q_PROPERTY(QList<qreal> columnWidths MEMBER m_columnWidths NOTIFY changed)
    Q_PROPERTY(qreal aroundText MEMBER m_aroundText NOTIFY changed) // of a column's width
    Q_PROPERTY(qreal characterWidth MEMBER m_characterWidth NOTIFY changed)
    Q_PROPERTY(qreal lineHeight MEMBER m_lineHeight NOTIFY changed)
    Q_PROPERTY(qreal aroundLines MEMBER m_aroundLines NOTIFY changed) // of a row's height

public:
    using RowEstimate::RowEstimate;

    double heightOf(const QAbstractItemModel& model, int row) const override;

private:
    QList<qreal> m_columnWidths;
    qreal m_aroundText = 0;
    qreal m_characterWidth = 7;
    qreal m_lineHeight = 20;
    qreal m_aroundLines = 0;
};

}
