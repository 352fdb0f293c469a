#pragma once

#include "RowEstimate.h"

#include <QStringView>

namespace Korvi {

// Guesses how high a message is from the length of its paragraphs, an answer from what its lines begin with.
class MessageHeights : public Korvi::RowEstimate { // qualified, for qmllint to know it
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QByteArray textRole MEMBER m_textRole NOTIFY changed)
    Q_PROPERTY(bool isPlain MEMBER m_isPlain NOTIFY changed) // answers are no Markdown
    // Pixels.
    Q_PROPERTY(qreal answerWidth MEMBER m_answerWidth NOTIFY changed)     // of the text of an answer
    Q_PROPERTY(qreal questionWidth MEMBER m_questionWidth NOTIFY changed) // of the text of a question at the widest
    Q_PROPERTY(qreal characterWidth MEMBER m_characterWidth NOTIFY changed)
    Q_PROPERTY(qreal lineHeight MEMBER m_lineHeight NOTIFY changed)
    Q_PROPERTY(qreal aroundAnswer MEMBER m_aroundAnswer NOTIFY changed) // height besides the text
    Q_PROPERTY(qreal aroundQuestion MEMBER m_aroundQuestion NOTIFY changed)
    Q_PROPERTY(qreal imageHeight MEMBER m_imageHeight NOTIFY changed) // of those that a question carries, as a whole
    Q_PROPERTY(qreal fileHeight MEMBER m_fileHeight NOTIFY changed)   // of one file
    Q_PROPERTY(qreal thinkingHeight MEMBER m_thinkingHeight NOTIFY changed) // of folded reasoning

public:
    using RowEstimate::RowEstimate;

    // Of a model with the roles isUser, thinking and content, as far as it has them, and that of the text.
    double heightOf(const QAbstractItemModel& model, int row) const override;

private:
    double lines(QStringView text, double width) const;
    double attached(const QVariant& content) const;

    QByteArray m_textRole = QByteArrayLiteral("text");
    bool m_isPlain = false;
    qreal m_answerWidth = 600;
    qreal m_questionWidth = 480;
    qreal m_characterWidth = 7;
    qreal m_lineHeight = 20;
    qreal m_aroundAnswer = 0;
    qreal m_aroundQuestion = 16;
    qreal m_imageHeight = 0;
    qreal m_fileHeight = 0;
    qreal m_thinkingHeight = 42;
};

}
