#include "CodeColours.h"

#include <QScopedValueRollback>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

#include <algorithm>
#include <limits>

namespace Korvi {

namespace {

constexpr int theEnd = std::numeric_limits<int>::max();

}

CodeColours::CodeColours(QObject* parent)
    : QObject(parent) {
    connect(this, &CodeColours::coloursChanged, this, &CodeColours::colourLater);
}

void CodeColours::setDocument(QQuickTextDocument* document) {
    if (document == m_document)
        return;
    if (m_document)
        m_document->textDocument()->disconnect(this);
    m_document = document;
    if (m_document) {
        connect(m_document->textDocument(), &QTextDocument::contentsChange, this,
            [this](int position, int, int added) { colour(position, position + added); });
    }
    colour(0, theEnd);
    emit documentChanged();
}

void CodeColours::setParts(CodeParts* parts) {
    if (parts == m_parts)
        return;
    if (m_parts)
        m_parts->disconnect(this);
    m_parts = parts;
    if (m_parts) {
        connect(m_parts, &CodeParts::recoloured, this, [this](qsizetype from) {
            const qsizetype inPart = from - m_parts->startOf(m_part);
            colour(static_cast<int>(std::max<qsizetype>(0, inPart)), theEnd);
        });
    }
    colour(0, theEnd);
    emit partsChanged();
}

void CodeColours::setPart(int part) {
    if (part == m_part)
        return;
    m_part = part;
    colour(0, theEnd);
    emit partChanged();
}

// When another theme sets all of them.
void CodeColours::colourLater() {
    if (m_colouringComes)
        return;
    m_colouringComes = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_colouringComes = false;
            colour(0, theEnd);
        },
        Qt::QueuedConnection);
}

void CodeColours::colour(int from, int to) {
    if (!m_document || !m_parts || m_isColouring)
        return;
    const QScopedValueRollback guard(m_isColouring, true);
    QTextDocument& document = *m_document->textDocument();
    const QTextBlock first = document.findBlock(from);
    int length = 0;
    for (QTextBlock line = first; line.isValid() && line.position() <= to; line = line.next()) {
        colourLine(line);
        length += line.length();
    }
    if (length == 0)
        return;
    document.markContentsDirty(first.position(), length);
    // The item draws anew what is written anew, and would leave as it was what only has other colours.
    if (to == theEnd)
        emit document.contentsChange(first.position(), length, length);
}

void CodeColours::colourLine(const QTextBlock& line) const {
    const qsizetype start = m_parts->startOf(m_part) + line.position();
    QList<QTextLayout::FormatRange> formats;
    for (const SyntaxHighlighter::Range& range : m_parts->colours(start, start + line.length() - 1)) {
        QTextLayout::FormatRange format;
        format.start = static_cast<int>(range.start - start);
        format.length = static_cast<int>(range.length);
        format.format.setForeground(colourOf(range.token));
        if (range.isBold)
            format.format.setFontWeight(QFont::Bold);
        formats.append(format);
    }
    line.layout()->setFormats(formats);
}

QColor CodeColours::colourOf(SyntaxHighlighter::Token token) const {
    switch (token) {
    case SyntaxHighlighter::Token::keyword: return m_keyword;
    case SyntaxHighlighter::Token::string: return m_string;
    case SyntaxHighlighter::Token::number: return m_number;
    case SyntaxHighlighter::Token::comment: return m_comment;
    case SyntaxHighlighter::Token::type: return m_type;
    case SyntaxHighlighter::Token::plain: break;
    }
    return {};
}

}
