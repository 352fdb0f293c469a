#pragma once

#include <QMetaProperty>
#include <QObject>
#include <QPointer>
#include <QQuickItem>

namespace Korvi {

// The Flickable around a column, by its public properties, and whose doing a movement is. What a Flickable shows begins
// at -topMargin; moving that beginning is the one way to insert height above the view without ending a flick that is
// under way, which every write of contentY does.
class ScrollArea : public QObject {
    Q_OBJECT

public:
    explicit ScrollArea(QQuickItem* flickable, QObject* parent = nullptr);

    QQuickItem* item() const { return m_item; }
    qreal width() const;
    qreal height() const;
    qreal contentY() const;
    bool moving() const; // dragged or flicked, the wheel included

    // Lays out `contentHeight` pixels from `origin` on and shows `contentY`; emits nothing.
    void arrange(qreal origin, qreal contentHeight, qreal contentY);
    void stop(); // ends a flick

signals:
    void resized();
    void scrolled(); // by somebody else than arrange()
    void movementEnded();

private slots:
    void contentYMoved();
    void heightMoved();
    void movingMoved();

private:
    QMetaProperty property(const char* name) const;
    void write(const QMetaProperty& property, qreal value);

    QPointer<QQuickItem> m_item;
    QMetaProperty m_contentY;
    QMetaProperty m_contentHeight;
    QMetaProperty m_topMargin;
    QMetaProperty m_moving;
    qreal m_arrangedHeight = 0; // of the view; another one makes the Flickable correct itself
    bool m_arranging = false;
};

}
