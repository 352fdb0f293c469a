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

public:
    using QObject::QObject;

    QQuickTextDocument* document() const { return m_document; }
    void setDocument(QQuickTextDocument* document);
    QString text() const { return m_text; }
    void setText(const QString& text);

signals:
    void documentChanged();
    void textChanged();
    void aboutToGrow(); // nothing but an addition at the end
    void grown();

private:
    void replaceAll();

    QPointer<QQuickTextDocument> m_document;
    QString m_text;
};

}
