#pragma once

#include <QObject>
#include <QPointer>
#include <QQuickTextDocument>
#include <QtQml/qqmlregistration.h>

namespace Korvi {

// Keeps the document of a TextEdit equal to a text that mostly grows at its end. Growth costs only the paragraphs that
// it touches: setting TextEdit.text would lay out the whole answer again for every piece.
class GrowingText : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QQuickTextDocument* document READ document WRITE setDocument NOTIFY documentChanged)
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    // Space between lines, in pixels, on top of what the font asks for.
    Q_PROPERTY(qreal lineDistance READ lineDistance WRITE setLineDistance NOTIFY lineDistanceChanged)

public:
    using QObject::QObject;

    QQuickTextDocument* document() const { return m_document; }
    void setDocument(QQuickTextDocument* document);
    QString text() const { return m_text; }
    void setText(const QString& text);
    qreal lineDistance() const { return m_lineDistance; }
    void setLineDistance(qreal distance);

signals:
    void documentChanged();
    void textChanged();
    void lineDistanceChanged();

private:
    void replaceAll();
    void applyLineDistance();

    QPointer<QQuickTextDocument> m_document;
    QString m_text;
    qreal m_lineDistance = 0;
};

}
