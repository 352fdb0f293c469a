// How a VirtualColumn settles: which rows exist as items, where they stand, and what the Flickable shows of them.
#include "PartColumn.h"
#include "VirtualColumn.h"

#include <QScopedValueRollback>

#include <cmath>
#include <utility>

namespace Korvi {

namespace {

// Heights converge at once unless an item answers to being placed; then the next frame goes on.
constexpr int mostPasses = 8;

}

void VirtualColumn::updatePolish() {
    layout();
}

void VirtualColumn::forceLayout() {
    layout();
}

void VirtualColumn::layout() {
    if (m_layingOut || !isComponentComplete() || !m_area || viewHeight() <= 0 || width() <= 0 || !m_items.canCreate())
        return;
    {
        const QScopedValueRollback guard(m_layingOut, true);
        if (m_estimatesOld)
            estimateAnew();
        for (int pass = 0; pass < mostPasses && fill(); ++pass) {
        }
        m_top = topWanted();
        if (prefetch())
            m_top = topWanted();
        place();
        m_shownTop = m_top;
        releaseFarRows();
        if (!m_following && m_jump.state() != QVariantAnimation::Running)
            keepAnchor();
    }
    if (m_jump.state() != QVariantAnimation::Running) {
        if (m_mayResume && distanceToEnd() < 1)
            setFollowing(true);
        m_mayResume = false;
    }
    publish();
}

double VirtualColumn::topWanted() const {
    const double furthest = std::max(0.0, contentEnd() - viewHeight());
    double top = furthest;
    if (!m_following) {
        const int row = m_anchor.row();
        top = row < 0 || row >= count() ? m_top : rowPosition(row) + m_anchor.offset(m_items.find(row));
    }
    if (m_jump.state() == QVariantAnimation::Running)
        top -= m_jumpLength * m_jump.currentValue().toDouble();
    return m_area->moving() ? top : std::clamp(top, 0.0, furthest); // a flick has bounds of its own
}

// Gives the rows in view their items, and all items' rows their heights; says whether that moved anything.
bool VirtualColumn::fill() {
    bool moved = false;
    for (const auto& [row, item] : m_items.live())
        moved = measure(row) || moved;
    const auto see = [&](int row) {
        m_items.obtain(row);
        showParts(row);
        moved = measure(row) || moved;
    };
    if (m_following && m_jump.state() != QVariantAnimation::Running) {
        for (int row = count() - 1; row >= 0 && rowPosition(row) + m_heights.at(row) > topWanted(); --row)
            see(row);
    } else if (count() > 0) {
        for (int row = m_heights.rowAt(topWanted() - m_topPadding);
             row < count() && rowPosition(row) < topWanted() + viewHeight(); ++row)
            see(row);
    }
    return moved;
}

void VirtualColumn::showParts(int row) {
    const QQuickItem* item = m_items.find(row);
    QSet<PartColumn*> seen;
    while (seen.size() < m_parts.size()) { // what is made may hold parts of its own
        const QSet<PartColumn*> others = m_parts - seen;
        seen = m_parts;
        for (PartColumn* parts : others) {
            if (!m_parts.contains(parts) || !item || !item->isAncestorOf(parts) || !parts->isVisible())
                continue;
            const double edge = topWanted() - rowPosition(row) - parts->mapToItem(item, {}).y();
            parts->see(edge, edge + viewHeight(), viewHeight());
        }
    }
}

bool VirtualColumn::measure(int row) {
    const QQuickItem* item = m_items.find(row);
    if (!item)
        return false;
    const double height = stride(std::ceil(item->height()));
    if (height == m_heights.at(row))
        return false;
    m_heights.set(row, height);
    return true;
}

// During a flick the content moves round the view instead of the view over the content.
void VirtualColumn::place() {
    m_origin = m_area->moving() ? m_area->contentY() - m_top : 0;
    for (const auto& [row, item] : m_items.live())
        item->setPosition({0, m_origin + rowPosition(row)});
    m_area->arrange(m_origin, contentEnd(), m_origin + m_top);
}

// Later than they are made, so that a small movement to and fro makes nothing. The row with the keyboard stays.
void VirtualColumn::releaseFarRows() {
    std::vector<int> far;
    for (const auto& [row, item] : m_items.live()) {
        const double from = rowPosition(row);
        const bool near = from < m_top + 2 * viewHeight() && from + heightAt(row) > m_top - viewHeight();
        if (!near && row != m_focusedRow)
            far.push_back(row);
    }
    for (const int row : far)
        m_items.release(row);
}

// One row per frame, so that scrolling into it does not have to make it. Says whether that moved anything.
bool VirtualColumn::prefetch() {
    if (count() == 0)
        return false;
    const double reach = viewHeight() / 2;
    const int first = m_heights.rowAt(m_top - m_topPadding - reach);
    const int last = m_heights.rowAt(m_top - m_topPadding + viewHeight() + reach);
    for (int row = first; row <= last; ++row) {
        if (m_items.isUpToDate(row))
            continue;
        QMetaObject::invokeMethod(this, &VirtualColumn::polish, Qt::QueuedConnection);
        m_items.obtain(row);
        showParts(row);
        return measure(row);
    }
    return false;
}

// Once after the view was scrolled it hangs on what is read now, most of which may not have been there before.
void VirtualColumn::keepAnchor() {
    const int row = m_anchor.row();
    const bool isKept = row >= 0 && row < count() && m_anchor.settle(m_top - rowPosition(row), m_items.find(row));
    if (!isKept || std::exchange(m_wasScrolled, false))
        recordAnchor();
}

// Of the lines that begin between these heights below the top of the content.
bool VirtualColumn::recordText(double from, double to) {
    for (int row = std::max(0, m_heights.rowAt(from - m_topPadding)); row < count() && rowPosition(row) < to; ++row) {
        const double top = rowPosition(row);
        QQuickItem* item = m_items.find(row);
        if (item && m_anchor.recordText(row, m_top - top, from - top, to - top, *item))
            return true;
    }
    return false;
}

// What is at that height, if it is an item, be it a picture.
bool VirtualColumn::recordLeaf(double from, double to) {
    const int row = m_heights.rowAt(from - m_topPadding);
    QQuickItem* item = m_items.find(row);
    if (from >= to || !item)
        return false;
    m_anchor.record(row, m_top - rowPosition(row), from - rowPosition(row), item);
    return true;
}

// The padding of the first row is what a row that was jumped to keeps above itself, so reading begins below it.
void VirtualColumn::recordAnchor() {
    m_isHeld = false;
    int row = m_heights.rowAt(m_top);
    if (row < 0) {
        m_anchor.clear();
        return;
    }
    const double reading = m_top + m_topPadding;
    const double end = m_top + viewHeight();
    // What was on the screen before, if it still is, text or not: the height of what comes into view may be a mere
    // estimate.
    const double from = std::max(reading, m_shownTop + m_topPadding);
    const double to = std::min(end, m_shownTop + viewHeight());
    if (recordText(from, to) || (m_top != m_shownTop && recordLeaf(from, to)) || recordText(reading, end))
        return;
    if (reading >= rowPosition(row) + heightAt(row) && row + 1 < count())
        ++row; // the edge lies between the two
    // A row that was never seen may be anything but as high as it is taken for; what is on the screen already holds.
    int seen = row;
    while (seen < count() && !m_items.find(seen) && rowPosition(seen) < end)
        ++seen;
    if (seen < count() && m_items.find(seen) && rowPosition(seen) < end)
        row = seen;
    m_anchor.record(row, m_top - rowPosition(row), reading - rowPosition(row), m_items.find(row));
}

// Whatever changes next may be the reader's own doing: what the hand is on stays where it is until the view is scrolled.
void VirtualColumn::hold(double y) {
    const int row = m_heights.rowAt(m_top + y - m_topPadding);
    QQuickItem* item = m_items.find(row);
    if (!item)
        return;
    m_isHeld = true;
    m_wasScrolled = false;
    m_anchor.record(row, m_top - rowPosition(row), m_top + y - rowPosition(row), item);
}

void VirtualColumn::publish() {
    const ScrollMetrics metrics{contentEnd(), viewHeight()};
    const bool changed = metrics != m_metrics;
    m_metrics = metrics;
    if (changed)
        emit scrollMetricsChanged();
    emit scrolled();
}

}
