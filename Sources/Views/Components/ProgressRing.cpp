#include "ProgressRing.h"

#include <QPainter>

#include <algorithm>

namespace Korvi {

namespace {

constexpr int wholeCircle = 360 * 16; // QPainter counts in sixteenths of a degree
constexpr int top = 90 * 16;
constexpr qreal leastSeen = 0.04; // that something is under way is seen from the start

}

ProgressRing::ProgressRing(QQuickItem* parent)
    : QQuickPaintedItem(parent) {
    setAntialiasing(true);
    connect(this, &ProgressRing::looksChanged, this, [this] { update(); });
}

void ProgressRing::paint(QPainter* painter) {
    const qreal inset = m_thickness / 2;
    const QRectF circle = boundingRect().adjusted(inset, inset, -inset, -inset);
    painter->setPen(QPen(m_track, m_thickness));
    painter->drawEllipse(circle);
    painter->setPen(QPen(m_color, m_thickness, Qt::SolidLine, Qt::RoundCap));
    painter->drawArc(circle, top, -static_cast<int>(wholeCircle * std::clamp(m_progress, leastSeen, 1.0)));
}

}
