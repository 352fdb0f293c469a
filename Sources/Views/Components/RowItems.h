#pragma once

#include <QAbstractItemModel>
#include <QPointer>
#include <QQmlComponent>
#include <QQuickItem>

#include <functional>
#include <map>

namespace Korvi {

// The items of those rows that are on the screen or near it, made from one component, or from that of the row's kind
// (role `kind`), and kept equal to the model. A role reaches the item as the property of the same name, the number of
// the row as `index`. Changed data are only noted: the item takes it over when it is next asked for, so that rows nobody
// sees cost nothing and many changes between two frames cost one.
class RowItems {
public:
    // `heightChanged` is called whenever an item gets another height.
    RowItems(QQuickItem& parent, std::function<void()> heightChanged);
    ~RowItems();

    void setModel(QAbstractItemModel* model);                   // lets go of all items
    void setDelegate(QQmlComponent* delegate);                  // lets go of all items
    void setKinds(const QHash<QString, QQmlComponent*>& kinds); // goes before the delegate of all; lets go of all items
    bool canCreate() const { return m_model && (m_delegate || !m_kinds.isEmpty()); }
    bool isShown(int row) const { return component(row) != nullptr; } // false for a kind that has no component

    const std::map<int, QQuickItem*>& live() const { return m_live; }
    QQuickItem* find(int row) const; // null for a row without an item
    QQuickItem* obtain(int row);     // up to date; null without a component, and when it fails
    bool isUpToDate(int row) const { return m_live.contains(row) && !m_changes.contains(row); }
    int rowOf(const QQuickItem* inside) const; // the row whose item holds it; -1 without one

    void setWidth(qreal width);
    void noteChange(int first, int last, const QList<int>& roles);
    void noteInsertion(int first, int count);
    void noteRemoval(int first, int count);
    void release(int row);
    void releaseAll();

private:
    struct Change {
        bool all = false;
        QList<int> roles;
    };

    using Roles = QHash<int, QByteArray>;

    QQmlComponent* component(int row) const;
    QQuickItem* create(int row);
    void update(int row, QQuickItem& item, const Change& change);
    void shift(int first, int by);
    void orderAmongSiblings(int row, QQuickItem& item);

    QQuickItem& m_parent;
    std::function<void()> m_heightChanged;
    QPointer<QAbstractItemModel> m_model;
    QPointer<QQmlComponent> m_delegate;
    QHash<QString, QQmlComponent*> m_kinds;
    int m_kindRole = -1;                                         // of the model; -1 without kinds
    QHash<const QQmlComponent*, Roles> m_roles;                  // those that its items have a property for
    QHash<const QQuickItem*, const QQmlComponent*> m_components; // of the live items
    std::map<int, QQuickItem*> m_live;
    std::map<int, Change> m_changes; // of live rows only
    qreal m_width = 0;
};

}
