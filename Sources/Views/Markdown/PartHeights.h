#pragma once

#include "RowEstimate.h"

namespace Korvi {

// Guesses how high the parts of an answer are (of AnswerParts).
class PartHeights : public Korvi::RowEstimate { // qualified, for qmllint to know it
    Q_OBJECT
    QML_ELEMENT
    // Pixels.
    Q_PROPERTY(qreal width MEMBER m_width NOTIFY changed)
    Q_PROPERTY(qreal textSize MEMBER m_textSize NOTIFY changed)             // of plain paragraphs
    Q_PROPERTY(qreal characterWidth MEMBER m_characterWidth NOTIFY changed) // in plain paragraphs

public:
    using RowEstimate::RowEstimate;

    double heightOf(const QAbstractItemModel& model, int row) const override;

private:
    qreal m_width = 600;
    qreal m_textSize = 13;
    qreal m_characterWidth = 7;
};

}
