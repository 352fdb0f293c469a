#pragma once

#include <QPointer>
#include <QQuickItem>
#include <QQuickWindow>

namespace Korvi {

// Tells whether anything of its place is to be seen in the window, so that what moves there can rest when it is not.
// It looks when a frame is made, and so costs nothing while the window rests.
class InView : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool isSeen READ isSeen NOTIFY isSeenChanged)

public:
    explicit InView(QQuickItem* parent = nullptr);

    bool isSeen() const { return m_isSeen; }

signals:
    void isSeenChanged();

protected:
    void itemChange(ItemChange change, const ItemChangeData& data) override;

private:
    void watch(QQuickWindow* window);
    void look();

    QMetaObject::Connection m_frames;
    QMetaObject::Connection m_shown;
    bool m_isSeen = false;
};

}
