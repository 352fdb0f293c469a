#include "VirtualColumn.h"

#include <algorithm>
#include <cmath>

namespace Korvi {

namespace {

constexpr double plainEstimate = 64; // pixels, where nobody estimates
constexpr double atEndDistance = 2;  // pixels; fractions of wheels and scales are not reading back

}

VirtualColumn::VirtualColumn(QQuickItem* parent)
    : QQuickItem(parent)
    , m_items(*this, [this] { polish(); }) {
    m_jump.setStartValue(1.0);
    m_jump.setEndValue(0.0);
    m_jump.setEasingCurve(QEasingCurve::OutCubic);
    connect(&m_jump, &QVariantAnimation::valueChanged, this, &VirtualColumn::polish);
    connect(&m_jump, &QVariantAnimation::finished, this, &VirtualColumn::polish);
}

VirtualColumn::~VirtualColumn() = default;

void VirtualColumn::setFlickable(QQuickItem* flickable) {
    if (flickable == this->flickable())
        return;
    m_area = flickable ? std::make_unique<ScrollArea>(flickable) : nullptr;
    if (m_area) {
        connect(m_area.get(), &ScrollArea::resized, this, &VirtualColumn::polish);
        connect(m_area.get(), &ScrollArea::scrolled, this, &VirtualColumn::readerScrolled);
        connect(m_area.get(), &ScrollArea::movementEnded, this, [this] {
            if (distanceToEnd() < atEndDistance)
                setFollowing(true);
            polish();
        });
    }
    polish();
    emit flickableChanged();
}

void VirtualColumn::setModel(QAbstractItemModel* model) {
    if (model == m_model)
        return;
    if (m_model)
        m_model->disconnect(this);
    m_model = model;
    m_items.setModel(model);
    if (m_model)
        connectModel();
    resetRows();
    emit modelChanged();
}

void VirtualColumn::connectModel() {
    using Model = QAbstractItemModel;
    connect(m_model, &Model::rowsInserted, this,
        [this](const QModelIndex&, int first, int last) { rowsInserted(first, last); });
    connect(m_model, &Model::rowsRemoved, this,
        [this](const QModelIndex&, int first, int last) { rowsRemoved(first, last); });
    connect(m_model, &Model::dataChanged, this,
        [this](const QModelIndex& first, const QModelIndex& last, const QList<int>& roles) {
            rowsChanged(first.row(), last.row(), roles);
        });
    connect(m_model, &Model::modelReset, this, &VirtualColumn::resetRows);
    connect(m_model, &Model::layoutChanged, this, &VirtualColumn::resetRows);
    connect(m_model, &Model::rowsMoved, this, &VirtualColumn::resetRows);
}

void VirtualColumn::setDelegate(QQmlComponent* delegate) {
    if (delegate == m_delegate)
        return;
    m_delegate = delegate;
    m_items.setDelegate(delegate);
    polish();
    emit delegateChanged();
}

void VirtualColumn::setEstimate(RowEstimate* estimate) {
    if (estimate == m_estimate)
        return;
    if (m_estimate)
        m_estimate->disconnect(this);
    m_estimate = estimate;
    if (m_estimate) {
        connect(m_estimate, &RowEstimate::changed, this, [this] {
            m_estimatesOld = true;
            polish();
        });
    }
    resetRows();
    emit estimateChanged();
}

void VirtualColumn::setSpacing(qreal spacing) {
    if (spacing == m_spacing)
        return;
    const double change = spacing - m_spacing;
    m_spacing = spacing;
    for (int row = 0; row < count(); ++row)
        m_heights.set(row, m_heights.at(row) + change);
    polish();
    emit spacingChanged();
}

void VirtualColumn::setTopPadding(qreal padding) {
    if (padding == m_topPadding)
        return;
    m_topPadding = padding;
    polish();
    emit topPaddingChanged();
}

void VirtualColumn::setBottomPadding(qreal padding) {
    if (padding == m_bottomPadding)
        return;
    m_bottomPadding = padding;
    polish();
    emit bottomPaddingChanged();
}

void VirtualColumn::rowsInserted(int first, int last) {
    const int added = last - first + 1;
    m_items.noteInsertion(first, added);
    m_anchor.noteInsertion(first, added);
    if (m_turnRow >= first)
        setTurnRow(m_turnRow + added);
    const std::vector<double> guesses = estimates(first, added);
    m_estimates.insert(m_estimates.begin() + first, guesses.begin(), guesses.end());
    std::vector<double> strides;
    for (const double guess : guesses)
        strides.push_back(stride(guess));
    m_heights.insert(first, strides);
    polish();
    updateFocusedRow();
    emit countChanged();
}

void VirtualColumn::rowsRemoved(int first, int last) {
    const int removed = last - first + 1;
    const bool hadFocus = m_focusedRow >= first && m_focusedRow <= last;
    m_items.noteRemoval(first, removed);
    m_anchor.noteRemoval(first, removed);
    m_heights.remove(first, removed);
    m_estimates.erase(m_estimates.begin() + first, m_estimates.begin() + last + 1);
    if (m_turnRow > last)
        setTurnRow(m_turnRow - removed);
    else if (m_turnRow >= first)
        setTurnRow(-1);
    if (count() == 0) { // nothing that could be read back
        m_anchor.clear();
        setTurnRow(-1);
        setFollowing(true);
    }
    polish();
    updateFocusedRow();
    emit countChanged();
    if (hadFocus)
        emit focusedRowRemoved(first);
}

void VirtualColumn::rowsChanged(int first, int last, const QList<int>& roles) {
    m_items.noteChange(first, last, roles);
    for (int row = first; row <= last; ++row) {
        auto& estimate = m_estimates[static_cast<std::size_t>(row)];
        estimate = unknown; // what the item measures has nothing to do with the old text
        if (!m_items.find(row)) {
            estimate = estimates(row, 1).front();
            m_heights.set(row, stride(estimate));
        }
    }
    polish();
}

void VirtualColumn::resetRows() {
    m_items.releaseAll();
    m_jump.stop();
    m_anchor.clear();
    setTurnRow(-1);
    setFollowing(true);
    m_estimates = estimates(0, m_model ? m_model->rowCount() : 0);
    std::vector<double> strides;
    for (const double guess : m_estimates)
        strides.push_back(stride(guess));
    m_heights.reset(std::move(strides));
    polish();
    updateFocusedRow();
    emit countChanged();
}

std::vector<double> VirtualColumn::estimates(int first, int count) const {
    std::vector<double> guesses(static_cast<std::size_t>(count), plainEstimate);
    if (m_estimate) {
        for (int i = 0; i < count; ++i)
            guesses[static_cast<std::size_t>(i)] = std::max(0.0, std::round(m_estimate->heightOf(*m_model, first + i)));
    }
    return guesses;
}

// At another width or size of text. How far the old estimate was off says how far the new one will be.
void VirtualColumn::estimateAnew() {
    m_estimatesOld = false;
    std::vector<double> guesses = estimates(0, count());
    std::vector<double> strides;
    for (int row = 0; row < count(); ++row) {
        const auto i = static_cast<std::size_t>(row);
        const double bias = m_estimates[i] > 0 ? heightAt(row) / m_estimates[i] : 1;
        strides.push_back(stride(std::round(guesses[i] * bias)));
    }
    m_estimates = std::move(guesses);
    m_heights.reset(std::move(strides));
}

qreal VirtualColumn::distanceToEnd() const {
    return std::max(0.0, contentEnd() - m_top - viewHeight());
}

bool VirtualColumn::farFromEnd() const {
    return end() - m_top - viewHeight() > m_farDistance;
}

int VirtualColumn::firstVisibleRow() const {
    return m_heights.rowAt(m_top - m_topPadding);
}

int VirtualColumn::lastVisibleRow() const {
    return m_heights.rowAt(m_top + viewHeight() - m_topPadding - 1);
}

qreal VirtualColumn::heightAt(int row) const {
    return m_heights.at(row) - m_spacing;
}

qreal VirtualColumn::rowPosition(int row) const {
    return m_topPadding + m_heights.before(row);
}

double VirtualColumn::end() const {
    return m_topPadding + m_heights.total() - (count() > 0 ? m_spacing : 0) + m_bottomPadding;
}

double VirtualColumn::contentEnd() const {
    return m_turnRow < 0 ? end() : std::max(end(), rowPosition(m_turnRow) - m_topPadding + viewHeight());
}

void VirtualColumn::showEnd(Jump jump, bool forced) {
    if (!forced && m_metrics.known() && !m_metrics.overflows())
        return;
    setTurnRow(-1);
    setFollowing(true);
    startJump(jump);
}

void VirtualColumn::showTurn(int row, Jump jump) {
    if (row < 0 || row >= count())
        return;
    setTurnRow(row);
    setFollowing(true);
    startJump(jump);
}

void VirtualColumn::positionAtRow(int row, Jump jump) {
    if (row < 0 || row >= count())
        return;
    m_anchor.record(row, -m_topPadding, 0, nullptr);
    setFollowing(false);
    m_mayResume = true;
    startJump(jump);
}

void VirtualColumn::scrollBy(qreal pixels) {
    scrollTo(m_top + pixels);
}

void VirtualColumn::scrollTo(qreal position) {
    if (!m_area)
        return;
    m_area->stop();
    m_jump.stop();
    m_top = std::clamp(position, 0.0, std::max(0.0, contentEnd() - viewHeight()));
    setFollowing(distanceToEnd() < atEndDistance);
    recordAnchor();
    m_wasScrolled = true;
    polish();
    emit scrolled();
}

void VirtualColumn::reveal(int row, qreal y, qreal height) {
    const double from = rowPosition(row) + y;
    const double to = from + height;
    if (from < m_top + m_topPadding || height > viewHeight() - m_topPadding)
        scrollTo(from - m_topPadding);
    else if (to > m_top + viewHeight() - m_bottomPadding)
        scrollTo(to + m_bottomPadding - viewHeight());
}

void VirtualColumn::letGo() {
    if (!m_following)
        return;
    setFollowing(false);
    if (!m_isHeld)
        recordAnchor();
    m_mayResume = true;
}

// The last part of a long way is enough to see where one goes.
void VirtualColumn::startJump(Jump jump) {
    if (m_area)
        m_area->stop();
    m_jump.stop();
    m_jumpLength = 0;
    if (jump == Animated && m_jumpDuration > 0 && m_metrics.known()) {
        const double furthest = 2 * viewHeight();
        m_jumpLength = std::clamp(topWanted() - m_top, -furthest, furthest);
        m_jump.setDuration(m_jumpDuration);
        m_jump.start();
    }
    polish();
}

void VirtualColumn::readerScrolled() {
    m_jump.stop();
    m_top = m_area->contentY() - m_origin;
    const bool atEnd = distanceToEnd() < atEndDistance;
    if (!atEnd || !m_area->moving()) // a flick that ends there decides at its end
        setFollowing(atEnd);
    recordAnchor();
    m_wasScrolled = true;
    polish();
    emit scrolled();
}

void VirtualColumn::setFollowing(bool following) {
    m_mayResume = false;
    if (following == m_following)
        return;
    m_following = following;
    emit followingChanged();
}

void VirtualColumn::setTurnRow(int row) {
    if (row == m_turnRow)
        return;
    m_turnRow = row;
    emit turnRowChanged();
}

void VirtualColumn::updateFocusedRow() {
    const int row = window() ? m_items.rowOf(window()->activeFocusItem()) : -1;
    if (row == m_focusedRow)
        return;
    m_focusedRow = row;
    emit focusedRowChanged();
}

void VirtualColumn::itemChange(ItemChange change, const ItemChangeData& data) {
    if (change == ItemSceneChange) {
        disconnect(m_windowFocus);
        if (m_window)
            m_window->removeEventFilter(this);
        m_window = data.window;
        if (data.window) {
            data.window->installEventFilter(this);
            m_windowFocus =
                connect(data.window, &QQuickWindow::activeFocusItemChanged, this, &VirtualColumn::updateFocusedRow);
            polish();
        }
    }
    QQuickItem::itemChange(change, data);
}

bool VirtualColumn::eventFilter(QObject* window, QEvent* event) {
    if (event->type() == QEvent::MouseButtonPress) {
        const QPointF at =
            m_area ? flickable()->mapFromScene(static_cast<QMouseEvent*>(event)->scenePosition()) : QPointF(-1, -1);
        if (m_area && flickable()->contains(at))
            hold(at.y());
    } else if (event->type() == QEvent::KeyPress && m_area && m_focusedRow >= 0) {
        const QQuickItem* item = m_window->activeFocusItem();
        const double y = flickable()->mapFromItem(item, QPointF()).y();
        if (y >= 0 && y < viewHeight())
            hold(y);
    }
    return QQuickItem::eventFilter(window, event);
}

void VirtualColumn::geometryChange(const QRectF& now, const QRectF& before) {
    QQuickItem::geometryChange(now, before);
    if (now.width() != before.width()) {
        m_items.setWidth(now.width());
        polish();
    }
}

void VirtualColumn::componentComplete() {
    QQuickItem::componentComplete();
    polish();
}

}
