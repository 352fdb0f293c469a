#include "GrowingText.h"

#include <QTextCursor>
#include <QTextDocument>

namespace Korvi {

void GrowingText::setDocument(QQuickTextDocument* document) {
    if (document == m_document)
        return;
    m_document = document;
    if (m_document)
        m_document->textDocument()->setUndoRedoEnabled(false);
    replaceAll();
    emit documentChanged();
}

void GrowingText::setText(const QString& text) {
    if (text == m_text)
        return;
    const bool grew = !m_text.isEmpty() && text.startsWith(m_text);
    const auto shown = m_text.size();
    m_text = text;
    if (grew && m_document) {
        emit aboutToGrow();
        QTextCursor cursor(m_document->textDocument());
        cursor.movePosition(QTextCursor::End);
        cursor.insertText(m_text.sliced(shown));
        emit grown();
    } else {
        replaceAll();
    }
    emit textChanged();
}

void GrowingText::replaceAll() {
    if (m_document)
        m_document->textDocument()->setPlainText(m_text);
}

}
