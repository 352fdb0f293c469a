#pragma once

#include <QPointer>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

namespace Korvi {

// Lets the shortcuts of the window through while that item has the keyboard. A TextEdit that cannot be edited would take
// every one of them for its own.
class ShortcutPassage : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QQuickItem* through READ through WRITE setThrough NOTIFY throughChanged)

public:
    using QObject::QObject;

    QQuickItem* through() const { return m_through; }
    void setThrough(QQuickItem* item);

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    void throughChanged();

private:
    QPointer<QQuickItem> m_through;
};

}
