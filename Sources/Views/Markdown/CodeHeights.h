#pragma once

#include "Components/RowEstimate.h"

namespace Korvi {

// How high the parts of some code will be. Exact where lines are not wrapped: they are all of one height.
class CodeHeights : public Korvi::RowEstimate { // qualified, for qmllint to know it
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(qreal lineHeight MEMBER m_lineHeight NOTIFY changed)   // pixels
    Q_PROPERTY(qreal wrapColumns MEMBER m_wrapColumns NOTIFY changed) // characters in a line, 0 when none is wrapped

public:
    using RowEstimate::RowEstimate;

    double heightOf(const QAbstractItemModel& model, int row) const override;

private:
    qreal m_lineHeight = 20;
    qreal m_wrapColumns = 0;
};

}
