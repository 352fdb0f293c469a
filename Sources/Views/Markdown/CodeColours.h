#pragma once

#include "CodeParts.h"

#include <QColor>
#include <QPointer>
#include <QQuickTextDocument>

class QTextBlock;

namespace Korvi {

// Keeps the colours of a TextEdit that shows one part of some code. Lines are coloured before they are laid out, and
// again when what comes later changes what they are.
class CodeColours : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QQuickTextDocument* document READ document WRITE setDocument NOTIFY documentChanged)
    Q_PROPERTY(Korvi::CodeParts* parts READ parts WRITE setParts NOTIFY partsChanged)
    Q_PROPERTY(int part MEMBER m_part WRITE setPart NOTIFY partChanged)
    Q_PROPERTY(QColor keyword MEMBER m_keyword NOTIFY coloursChanged)
    Q_PROPERTY(QColor string MEMBER m_string NOTIFY coloursChanged)
    Q_PROPERTY(QColor number MEMBER m_number NOTIFY coloursChanged)
    Q_PROPERTY(QColor comment MEMBER m_comment NOTIFY coloursChanged)
    Q_PROPERTY(QColor type MEMBER m_type NOTIFY coloursChanged)

public:
    explicit CodeColours(QObject* parent = nullptr);

    QQuickTextDocument* document() const { return m_document; }
    void setDocument(QQuickTextDocument* document);
    CodeParts* parts() const { return m_parts; }
    void setParts(CodeParts* parts);
    void setPart(int part);

signals:
    void documentChanged();
    void partsChanged();
    void partChanged();
    void coloursChanged();

private:
    void colourLater();
    void colour(int from, int to);
    void colourLine(const QTextBlock& line) const;
    QColor colourOf(SyntaxHighlighter::Token token) const;

    QPointer<QQuickTextDocument> m_document;
    QPointer<CodeParts> m_parts;
    int m_part = 0;
    QColor m_keyword;
    QColor m_string;
    QColor m_number;
    QColor m_comment;
    QColor m_type;
    bool m_isColouring = false;
    bool m_colouringComes = false;
};

}
