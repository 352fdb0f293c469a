#include "PartColumn.h"

#include "VirtualColumn.h"

#include <QQuickWindow>
#include <QScopedValueRollback>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Korvi {

namespace {

constexpr double plainEstimate = 64; // pixels, where nobody estimates

}

PartColumn::PartColumn(QQuickItem* parent)
    : QQuickItem(parent)
    , m_items(*this, [this] { changed(); }) {
    setFiltersChildMouseEvents(true);
}

PartColumn::~PartColumn() {
    if (m_column)
        m_column->forgetParts(this);
}

void PartColumn::setModel(QAbstractItemModel* model) {
    if (model == m_model)
        return;
    if (m_model)
        m_model->disconnect(this);
    m_model = model;
    m_items.setModel(model);
    m_gapRole = model ? model->roleNames().key("gap", -1) : -1;
    if (m_model) {
        using Model = QAbstractItemModel;
        connect(m_model, &Model::rowsInserted, this,
            [this](const QModelIndex&, int first, int last) { partsInserted(first, last); });
        connect(m_model, &Model::dataChanged, this,
            [this](const QModelIndex& first, const QModelIndex& last, const QList<int>& roles) {
                partsChanged(first.row(), last.row(), roles);
            });
        connect(m_model, &Model::rowsRemoved, this,
            [this](const QModelIndex&, int first, int last) { partsRemoved(first, last); });
        connect(m_model, &Model::rowsMoved, this, &PartColumn::resetParts);
        connect(m_model, &Model::layoutChanged, this, &PartColumn::resetParts);
        connect(m_model, &Model::modelReset, this, &PartColumn::resetParts);
    }
    resetParts();
    emit modelChanged();
}

void PartColumn::setDelegate(QQmlComponent* delegate) {
    if (delegate == m_delegate)
        return;
    m_delegate = delegate;
    m_items.setDelegate(delegate);
    changed();
    emit delegateChanged();
}

QQmlListProperty<PartKind> PartColumn::kinds() {
    // Declared, never changed later.
    return {this, nullptr, &PartColumn::appendKind,
        [](QQmlListProperty<PartKind>* list) { return static_cast<PartColumn*>(list->object)->m_kinds.size(); },
        [](QQmlListProperty<PartKind>* list, qsizetype at) {
            return static_cast<PartColumn*>(list->object)->m_kinds.at(at);
        },
        nullptr};
}

void PartColumn::appendKind(QQmlListProperty<PartKind>* list, PartKind* kind) {
    static_cast<PartColumn*>(list->object)->m_kinds.append(kind);
}

void PartColumn::setGapScale(qreal scale) {
    if (scale == m_gapScale)
        return;
    m_gapScale = scale;
    m_estimatesOld = true;
    changed();
    emit gapScaleChanged();
}

double PartColumn::gap(int part) const {
    if (m_gapRole < 0 || !m_items.isShown(part))
        return 0;
    return std::round(m_model->data(m_model->index(part, 0), m_gapRole).toDouble() * m_gapScale);
}

void PartColumn::setEstimate(RowEstimate* estimate) {
    if (estimate == m_estimate)
        return;
    if (m_estimate)
        m_estimate->disconnect(this);
    m_estimate = estimate;
    if (m_estimate) {
        connect(m_estimate, &RowEstimate::changed, this, [this] {
            m_estimatesOld = true;
            changed();
        });
    }
    m_estimatesOld = true;
    changed();
    emit estimateChanged();
}

void PartColumn::resetParts() {
    m_items.releaseAll();
    m_heights.reset(estimates(0, m_model ? m_model->rowCount() : 0));
    changed();
}

void PartColumn::partsInserted(int first, int last) {
    m_items.noteInsertion(first, last - first + 1);
    m_heights.insert(first, estimates(first, last - first + 1));
    changed();
}

void PartColumn::partsRemoved(int first, int last) {
    m_items.noteRemoval(first, last - first + 1);
    m_heights.remove(first, last - first + 1);
    changed();
}

void PartColumn::partsChanged(int first, int last, const QList<int>& roles) {
    m_items.noteChange(first, last, roles);
    for (int part = first; part <= last; ++part) {
        if (!m_items.find(part))
            m_heights.set(part, estimates(part, 1).front());
    }
    changed();
}

std::vector<double> PartColumn::estimates(int first, int count) const {
    std::vector<double> guesses(static_cast<std::size_t>(count), 0);
    for (int i = 0; i < count; ++i) {
        const int part = first + i;
        if (m_items.isShown(part))
            guesses[static_cast<std::size_t>(i)] =
                gap(part) + std::round(m_estimate ? m_estimate->heightOf(*m_model, part) : plainEstimate);
    }
    return guesses;
}

QQuickItem* PartColumn::obtain(int part) {
    const QQuickItem* before = m_items.find(part);
    QQuickItem* item = m_items.obtain(part);
    if (item && item != before)
        emit partMade(part, item);
    return item;
}

void PartColumn::see(double from, double to, double reach) {
    if (!isComponentComplete() || width() <= 0 || !m_items.canCreate())
        return;
    if (m_estimatesOld) {
        m_estimatesOld = false;
        m_heights.reset(estimates(0, m_heights.count()));
    }
    for (const auto& [part, item] : m_items.live())
        measure(part);
    if (from < m_heights.total() && to > 0) {
        for (int part = std::max(0, m_heights.rowAt(from)); part < m_heights.count() && m_heights.before(part) < to;
             ++part) {
            obtain(part);
            measure(part);
        }
    }
    std::vector<int> far;
    for (const auto& [part, item] : m_items.live()) {
        const double top = m_heights.before(part);
        if ((top > to + reach || top + m_heights.at(part) < from - reach) && !holdsFocus(part))
            far.push_back(part);
    }
    for (const int part : far)
        m_items.release(part);
    place();
}

QQuickItem* PartColumn::showPart(int part) {
    if (part < 0 || part >= m_heights.count() || !m_items.canCreate())
        return nullptr;
    QQuickItem* item = obtain(part);
    changed();
    return item;
}

QVariantList PartColumn::partsAtHand() const {
    QVariantList parts;
    for (const auto& [part, item] : m_items.live())
        parts.append(part);
    return parts;
}

int PartColumn::focusedPart() const {
    return window() ? m_items.rowOf(window()->activeFocusItem()) : -1;
}

bool PartColumn::measure(int part) {
    const QQuickItem* item = m_items.find(part);
    if (!item)
        return false;
    const double height = gap(part) + std::ceil(item->height());
    if (height == m_heights.at(part))
        return false;
    m_heights.set(part, height);
    return true;
}

void PartColumn::place() {
    for (const auto& [part, item] : m_items.live())
        item->setY(m_heights.before(part) + gap(part));
    setImplicitHeight(m_heights.total());
}

bool PartColumn::holdsFocus(int part) const {
    return focusedPart() == part;
}

// What is in view is for the column to say, once per frame.
void PartColumn::changed() {
    if (m_column) {
        for (const auto& [part, item] : m_items.live()) // the column never asks for those of a row out of view
            measure(part);
        place();
        m_column->polish();
    } else if (!m_showingAll) {
        const QScopedValueRollback guard(m_showingAll, true);
        see(0, std::numeric_limits<double>::max(), 0);
    }
}

void PartColumn::findColumn() {
    VirtualColumn* column = nullptr;
    for (QQuickItem* around = parentItem(); around && !column; around = around->parentItem())
        column = qobject_cast<VirtualColumn*>(around);
    if (column == m_column)
        return;
    if (m_column)
        m_column->forgetParts(this);
    m_column = column;
    if (m_column)
        m_column->rememberParts(this);
}

// Only looks on: a handler of its own would come too late once a text has taken the pointer for itself.
bool PartColumn::childMouseEventFilter(QQuickItem* item, QEvent* event) {
    const auto place = [&] { return mapFromScene(static_cast<QMouseEvent*>(event)->scenePosition()); };
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        m_pointerIsDown = static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton &&
            item->metaObject()->indexOfMethod("positionToRectangle(int)") >= 0;
        if (m_pointerIsDown)
            emit pointerPressed(place().x(), place().y());
        break;
    case QEvent::MouseMove:
        if (m_pointerIsDown)
            emit pointerMoved(place().x(), place().y());
        break;
    case QEvent::MouseButtonRelease:
    case QEvent::UngrabMouse:
        if (m_pointerIsDown)
            emit pointerReleased();
        m_pointerIsDown = false;
        break;
    default: break;
    }
    return false;
}

void PartColumn::componentComplete() {
    QQuickItem::componentComplete();
    if (!m_kinds.isEmpty()) {
        QHash<QString, QQmlComponent*> kinds;
        for (const PartKind* kind : m_kinds)
            kinds.insert(kind->name(), kind->delegate());
        m_items.setKinds(kinds);
        resetParts();
    }
    findColumn();
    changed();
}

void PartColumn::itemChange(ItemChange change, const ItemChangeData& data) {
    if (change == ItemParentHasChanged || (change == ItemSceneChange && data.window))
        findColumn();
    QQuickItem::itemChange(change, data);
}

void PartColumn::geometryChange(const QRectF& now, const QRectF& before) {
    QQuickItem::geometryChange(now, before);
    if (now.width() != before.width()) {
        m_items.setWidth(now.width());
        changed();
    }
}

}
