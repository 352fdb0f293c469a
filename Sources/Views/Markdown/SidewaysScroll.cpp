#include "SidewaysScroll.h"

#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace Korvi {

namespace {

constexpr qreal notch = 120; // eighths of a degree

}

void SidewaysScroll::setFlickable(QQuickItem* flickable) {
    if (flickable == m_flickable)
        return;
    m_flickable = flickable;
    emit flickableChanged();
}

bool SidewaysScroll::scrollBy(qreal pixels) {
    if (!m_flickable)
        return false;
    const qreal longest = m_flickable->property("contentWidth").toReal() - m_flickable->width();
    if (longest <= 0)
        return false;
    const qreal at = m_flickable->property("contentX").toReal();
    m_flickable->setProperty("contentX", std::clamp(at + pixels, 0.0, longest));
    return true;
}

void SidewaysScroll::wheelEvent(QWheelEvent* event) {
    const bool shift = event->modifiers().testFlag(Qt::ShiftModifier);
    const QPointF angle = event->angleDelta();
    const QPointF pixels = event->pixelDelta();
    // Fingers that have begun to go one way stay with it.
    const bool goesOn = event->phase() == Qt::ScrollUpdate || event->phase() == Qt::ScrollMomentum;
    if (!goesOn)
        m_direction = Direction::undecided;
    if (m_direction == Direction::undecided && !angle.isNull()) {
        const bool sideways = std::abs(angle.x()) > std::abs(angle.y()) || shift;
        m_direction = sideways ? Direction::sideways : Direction::upOrDown;
    }
    const auto along = [&](const QPointF& delta) { return shift && delta.x() == 0 ? delta.y() : delta.x(); };
    const qreal by = pixels.isNull() ? along(angle) / notch * m_step : along(pixels);
    event->setAccepted(m_direction == Direction::sideways && scrollBy(-by));
}

}
