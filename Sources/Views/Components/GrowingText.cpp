#include "GrowingText.h"

#include <QTextBlockFormat>
#include <QTextCursor>
#include <QTextDocument>

namespace Korvi {

void GrowingText::setDocument(QQuickTextDocument* document)
{
    if (document == m_document)
        return;
    m_document = document;
    if (m_document)
        m_document->textDocument()->setUndoRedoEnabled(false);
    replaceAll();
    emit documentChanged();
}

void GrowingText::setText(const QString& text)
{
    if (text == m_text)
        return;
    const bool grew = !m_text.isEmpty() && text.startsWith(m_text);
    const auto shown = m_text.size();
    m_text = text;
    if (grew && m_document) {
        QTextCursor cursor(m_document->textDocument());
        cursor.movePosition(QTextCursor::End);
        cursor.insertText(m_text.sliced(shown));
    } else {
        replaceAll();
    }
    emit textChanged();
}

void GrowingText::setLineDistance(qreal distance)
{
    if (distance == m_lineDistance)
        return;
    m_lineDistance = distance;
    applyLineDistance();
    emit lineDistanceChanged();
}

void GrowingText::replaceAll()
{
    if (!m_document)
        return;
    m_document->textDocument()->setPlainText(m_text);
    applyLineDistance();
}

void GrowingText::applyLineDistance()
{
    if (!m_document)
        return;
    QTextBlockFormat format;
    format.setLineHeight(m_lineDistance, QTextBlockFormat::LineDistanceHeight);
    QTextCursor cursor(m_document->textDocument());
    cursor.select(QTextCursor::Document);
    cursor.mergeBlockFormat(format);
}

}
