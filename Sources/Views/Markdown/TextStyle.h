#pragma once

#include "Paragraph.h"

#include <QColor>
#include <QObject>
#include <QTextBlockFormat>
#include <QTextCharFormat>
#include <QtQml/qqmlregistration.h>

namespace Korvi {

// What the paragraphs of an answer look like at one size of text and in one scheme of colours.
class TextStyle : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString family MEMBER m_family NOTIFY changed)
    Q_PROPERTY(QString monoFamily MEMBER m_monoFamily NOTIFY changed)
    Q_PROPERTY(qreal textSize MEMBER m_textSize NOTIFY changed) // pixels, of plain paragraphs
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY changed)
    Q_PROPERTY(QColor codeColor MEMBER m_codeColor NOTIFY changed)

public:
    using QObject::QObject;

    QTextCharFormat charFormat(Paragraph::Kind kind, Paragraph::Style style) const;
    // `above`: the paragraph over it in the same document, or null.
    QTextBlockFormat blockFormat(const Paragraph& paragraph, const Paragraph* above) const;
    // The marker's last blank is stretched so far that the text after it stands above the lines that follow.
    QTextCharFormat markerEndFormat(Paragraph::Kind kind, const QString& marker) const;
    double scaled(double length) const { return length * m_textSize / 13; } // a length for text of 13 pixels

signals:
    void changed();

private:
    double fontSize(Paragraph::Kind kind) const;

    QString m_family = QStringLiteral("Inter");
    QString m_monoFamily = QStringLiteral("JetBrains Mono");
    qreal m_textSize = 13;
    QColor m_color = Qt::black;
    QColor m_codeColor = Qt::darkRed;
};

}
