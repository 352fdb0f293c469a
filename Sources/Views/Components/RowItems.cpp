#include "RowItems.h"

#include <QLoggingCategory>
#include <QQmlContext>
#include <QQmlEngine>

namespace Korvi {

namespace {

Q_LOGGING_CATEGORY(lcRows, "korvi.views.rows")

constexpr char indexProperty[] = "index";
constexpr char kindName[] = "kind";

// Moves the keys from `first` on by `by`.
template <class Value>
void shiftKeys(std::map<int, Value>& map, int first, int by) {
    std::map<int, Value> shifted;
    for (auto& [row, value] : map)
        shifted.emplace(row < first ? row : row + by, std::move(value));
    map = std::move(shifted);
}

}

RowItems::RowItems(QQuickItem& parent, std::function<void()> heightChanged)
    : m_parent(parent)
    , m_heightChanged(std::move(heightChanged)) {}

RowItems::~RowItems() {
    for (const auto& [row, item] : m_live)
        item->disconnect(&m_parent);
}

void RowItems::setModel(QAbstractItemModel* model) {
    releaseAll();
    m_model = model;
    m_roles.clear();
    m_kindRole = model && !m_kinds.isEmpty() ? model->roleNames().key(kindName, -1) : -1;
}

void RowItems::setDelegate(QQmlComponent* delegate) {
    releaseAll();
    m_delegate = delegate;
    m_roles.clear();
}

void RowItems::setKinds(const QHash<QString, QQmlComponent*>& kinds) {
    releaseAll();
    m_kinds = kinds;
    m_roles.clear();
    m_kindRole = m_model && !kinds.isEmpty() ? m_model->roleNames().key(kindName, -1) : -1;
}

QQmlComponent* RowItems::component(int row) const {
    if (m_kindRole < 0)
        return m_delegate;
    return m_kinds.value(m_model->data(m_model->index(row, 0), m_kindRole).toString(), m_delegate);
}

QQuickItem* RowItems::find(int row) const {
    const auto found = m_live.find(row);
    return found == m_live.end() ? nullptr : found->second;
}

QQuickItem* RowItems::obtain(int row) {
    QQuickItem* item = find(row);
    if (!item)
        return create(row);
    if (const auto node = m_changes.extract(row); !node.empty()) {
        if (m_components.value(item) != component(row)) { // it has become something else
            release(row);
            return create(row);
        }
        update(row, *item, node.mapped());
    }
    return item;
}

int RowItems::rowOf(const QQuickItem* inside) const {
    while (inside && inside->parentItem() != &m_parent)
        inside = inside->parentItem();
    if (inside) {
        for (const auto& [row, item] : m_live) {
            if (item == inside)
                return row;
        }
    }
    return -1;
}

void RowItems::setWidth(qreal width) {
    m_width = width;
    for (const auto& [row, item] : m_live)
        item->setWidth(width);
}

void RowItems::noteChange(int first, int last, const QList<int>& roles) {
    for (auto live = m_live.lower_bound(first); live != m_live.end() && live->first <= last; ++live) {
        Change& change = m_changes[live->first];
        change.all = change.all || roles.isEmpty();
        for (const int role : roles) {
            if (!change.roles.contains(role))
                change.roles.append(role);
        }
    }
}

void RowItems::noteInsertion(int first, int count) {
    shift(first, count);
}

void RowItems::noteRemoval(int first, int count) {
    for (int row = first; row < first + count; ++row)
        release(row);
    shift(first + count, -count);
}

void RowItems::release(int row) {
    const auto node = m_live.extract(row);
    m_changes.erase(row);
    if (node.empty())
        return;
    QQuickItem* item = node.mapped();
    m_components.remove(item);
    item->disconnect(&m_parent);
    item->setVisible(false);
    item->deleteLater(); // it may be the one that asks for this
}

void RowItems::releaseAll() {
    while (!m_live.empty())
        release(m_live.begin()->first);
}

void RowItems::shift(int first, int by) {
    shiftKeys(m_live, first, by);
    shiftKeys(m_changes, first, by);
    for (auto live = m_live.lower_bound(first + by); live != m_live.end(); ++live)
        live->second->setProperty(indexProperty, live->first);
}

QQuickItem* RowItems::create(int row) {
    QQmlComponent* delegate = component(row);
    if (!delegate)
        return nullptr;
    QQmlContext* context = delegate->creationContext();
    if (!context)
        context = qmlContext(&m_parent);
    QObject* object = delegate->beginCreate(context);
    auto* item = qobject_cast<QQuickItem*>(object);
    if (!item) {
        qCWarning(lcRows) << "a row cannot be made:" << delegate->errorString();
        delete object;
        return nullptr;
    }
    Roles& roles = m_roles[delegate];
    if (roles.isEmpty()) {
        const QHash<int, QByteArray> names = m_model->roleNames();
        for (auto role = names.begin(); role != names.end(); ++role) {
            if (item->metaObject()->indexOfProperty(role.value()) >= 0)
                roles.insert(role.key(), role.value());
        }
    }
    const QModelIndex index = m_model->index(row, 0);
    QVariantMap properties;
    for (auto role = roles.cbegin(); role != roles.cend(); ++role)
        properties.insert(QString::fromLatin1(role.value()), m_model->data(index, role.key()));
    if (item->metaObject()->indexOfProperty(indexProperty) >= 0)
        properties.insert(QString::fromLatin1(indexProperty), row);
    QQmlEngine::setObjectOwnership(item, QQmlEngine::CppOwnership);
    item->setParent(&m_parent);
    item->setParentItem(&m_parent);
    item->setWidth(m_width);
    delegate->setInitialProperties(item, properties);
    delegate->completeCreate();
    if (delegate->isError()) {
        qCWarning(lcRows) << "a row cannot be made:" << delegate->errorString();
        delete item;
        return nullptr;
    }
    orderAmongSiblings(row, *item);
    m_live.emplace(row, item);
    m_components.insert(item, delegate);
    QObject::connect(item, &QQuickItem::heightChanged, &m_parent, m_heightChanged);
    return item;
}

void RowItems::update(int row, QQuickItem& item, const Change& change) {
    const QModelIndex index = m_model->index(row, 0);
    const Roles roles = m_roles.value(m_components.value(&item));
    const auto apply = [&](int role) {
        if (const auto name = roles.constFind(role); name != roles.constEnd())
            item.setProperty(name.value(), m_model->data(index, role));
    };
    if (change.all) {
        for (auto role = roles.cbegin(); role != roles.cend(); ++role)
            apply(role.key());
    } else {
        for (const int role : change.roles)
            apply(role);
    }
}

// The Tab key and screen readers go through the items in their order, not by their place.
void RowItems::orderAmongSiblings(int row, QQuickItem& item) {
    const auto next = m_live.upper_bound(row);
    if (next != m_live.end())
        item.stackBefore(next->second);
    else if (next != m_live.begin())
        item.stackAfter(std::prev(next)->second);
}

}
