#pragma once

#include <QPointer>
#include <QQuickItem>

namespace Korvi {

// Around a Flickable that scrolls sideways, and only for those who mean that: by a wheel with Shift, a wheel that goes
// sideways, a touchpad whose fingers go more sideways than up or down. What goes up or down is left to whoever scrolls
// the whole. The Flickable itself must not be interactive.
class SidewaysScroll : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QQuickItem* flickable READ flickable WRITE setFlickable NOTIFY flickableChanged)
    Q_PROPERTY(qreal step MEMBER m_step NOTIFY stepChanged) // pixels, for a notch of the wheel

public:
    using QQuickItem::QQuickItem;

    QQuickItem* flickable() const { return m_flickable; }
    void setFlickable(QQuickItem* flickable);

    Q_INVOKABLE bool scrollBy(qreal pixels); // to the right; false where there is nothing to scroll

signals:
    void flickableChanged();
    void stepChanged();

protected:
    void wheelEvent(QWheelEvent* event) override;

private:
    QPointer<QQuickItem> m_flickable;
    qreal m_step = 60;
    enum class Direction { undecided, sideways, upOrDown };
    Direction m_direction = Direction::undecided; // of the fingers that are on the touchpad
};

}
