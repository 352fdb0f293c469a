#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

namespace Korvi {

// How much of something is done, as a part of a circle.
class ProgressRing : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(qreal progress MEMBER m_progress NOTIFY looksChanged) // 0 to 1
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY looksChanged)
    Q_PROPERTY(QColor track MEMBER m_track NOTIFY looksChanged) // of what is not done yet
    Q_PROPERTY(qreal thickness MEMBER m_thickness NOTIFY looksChanged)

public:
    explicit ProgressRing(QQuickItem* parent = nullptr);

    void paint(QPainter* painter) override;

signals:
    void looksChanged();

private:
    qreal m_progress = 0;
    QColor m_color = Qt::black;
    QColor m_track = Qt::transparent;
    qreal m_thickness = 2;
};

}
