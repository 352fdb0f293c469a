#include "InView.h"

namespace Korvi {

InView::InView(QQuickItem* parent)
    : QQuickItem(parent) {}

void InView::itemChange(ItemChange change, const ItemChangeData& data) {
    QQuickItem::itemChange(change, data);
    if (change == ItemSceneChange)
        watch(data.window);
    else if (change == ItemVisibleHasChanged)
        look();
}

void InView::watch(QQuickWindow* window) {
    disconnect(m_frames);
    disconnect(m_shown);
    if (window) {
        m_frames = connect(window, &QQuickWindow::afterAnimating, this, &InView::look);
        m_shown = connect(window, &QWindow::visibilityChanged, this, &InView::look);
    }
    look();
}

void InView::look() {
    bool isSeen = window() && window()->isVisible() && window()->visibility() != QWindow::Minimized && isVisible();
    if (isSeen) {
        QRectF place = mapRectToScene(boundingRect());
        place &= QRectF(QPointF(), QSizeF(window()->size()));
        for (const QQuickItem* above = parentItem(); above && !place.isEmpty(); above = above->parentItem()) {
            if (above->clip())
                place &= above->mapRectToScene(above->boundingRect());
        }
        isSeen = !place.isEmpty();
    }
    if (isSeen == m_isSeen)
        return;
    m_isSeen = isSeen;
    emit isSeenChanged();
}

}
