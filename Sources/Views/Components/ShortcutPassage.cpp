#include "ShortcutPassage.h"

#include <QEvent>

namespace Korvi {

void ShortcutPassage::setThrough(QQuickItem* item) {
    if (item == m_through)
        return;
    if (m_through)
        m_through->removeEventFilter(this);
    m_through = item;
    if (m_through)
        m_through->installEventFilter(this);
    emit throughChanged();
}

bool ShortcutPassage::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::ShortcutOverride)
        return QObject::eventFilter(watched, event);
    event->ignore();
    return true;
}

}
