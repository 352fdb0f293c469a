#include "LineSpacing.h"

#include <QTextBlock>
#include <QTextBlockFormat>
#include <QTextCursor>
#include <QTextDocument>

namespace Korvi {

void LineSpacing::setDocument(QQuickTextDocument* document) {
    if (document == m_document)
        return;
    disconnect(m_contents);
    m_document = document;
    if (m_document) {
        // Typed and appended paragraphs inherit the format; only a wholly new text comes without it.
        m_contents = connect(m_document->textDocument(), &QTextDocument::contentsChange, this, [this] {
            if (m_document->textDocument()->firstBlock().blockFormat().lineHeight() != m_distance)
                QMetaObject::invokeMethod(this, &LineSpacing::apply, Qt::QueuedConnection);
        });
    }
    apply();
    emit documentChanged();
}

void LineSpacing::setDistance(qreal distance) {
    if (distance == m_distance)
        return;
    m_distance = distance;
    apply();
    emit distanceChanged();
}

void LineSpacing::apply() {
    if (!m_document)
        return;
    QTextDocument* document = m_document->textDocument();
    if (document->firstBlock().blockFormat().lineHeight() == m_distance)
        return;
    QTextBlockFormat format;
    format.setLineHeight(m_distance, QTextBlockFormat::LineDistanceHeight);
    // Not a step that the user could undo; there is none yet in a text that was just set.
    const bool undo = document->isUndoRedoEnabled();
    document->setUndoRedoEnabled(false);
    QTextCursor cursor(document);
    cursor.select(QTextCursor::Document);
    cursor.mergeBlockFormat(format);
    document->setUndoRedoEnabled(undo);
}

}
