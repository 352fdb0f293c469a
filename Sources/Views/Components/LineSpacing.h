#pragma once

#include <QMetaObject>
#include <QObject>
#include <QPointer>
#include <QQuickTextDocument>
#include <QtQml/qqmlregistration.h>

class QTextDocument;

namespace Korvi {

// Gives the lines of a TextEdit more air than its font asks for, which TextEdit itself cannot do. The space stands under
// each line, the last one too.
class LineSpacing : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QQuickTextDocument* document READ document WRITE setDocument NOTIFY documentChanged)
    Q_PROPERTY(qreal distance READ distance WRITE setDistance NOTIFY distanceChanged) // pixels

public:
    using QObject::QObject;

    QQuickTextDocument* document() const { return m_document; }
    void setDocument(QQuickTextDocument* document);
    qreal distance() const { return m_distance; }
    void setDistance(qreal distance);

signals:
    void documentChanged();
    void distanceChanged();

private:
    void apply();

    QPointer<QQuickTextDocument> m_document;
    QMetaObject::Connection m_contents;
    qreal m_distance = 0;
};

}
