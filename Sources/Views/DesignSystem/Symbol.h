#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

namespace Korvi {

// One icon of the bundled set, named as a system symbol ("sparkles", "arrow.up"), drawn in one colour and sharp at any
// scale factor. An unknown name draws nothing and says so in the log.
class Symbol : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(qreal size READ size WRITE setSize NOTIFY sizeChanged) // edge of the square, in pixels
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)

public:
    // In the units of the 24 x 24 grid that the set is drawn on.
    static constexpr qreal strokeWidth = 1.75;

    explicit Symbol(QQuickItem* parent = nullptr);

    QString name() const { return m_name; }
    void setName(const QString& name);
    qreal size() const { return m_size; }
    void setSize(qreal size);
    QColor color() const { return m_color; }
    void setColor(const QColor& color);

    void paint(QPainter* painter) override;

signals:
    void nameChanged();
    void sizeChanged();
    void colorChanged();

private:
    QString m_name;
    qreal m_size = 16;
    QColor m_color = Qt::black;
    QByteArray m_svg;
};

}
