#pragma once

#include "RowEstimate.h"
#include "RowHeights.h"
#include "RowItems.h"

namespace Korvi {

class VirtualColumn;

// The parts of one row of a VirtualColumn, one under the other: like the rows themselves, only those in view and near it
// are items, so that a row of any height costs what is seen of it. The VirtualColumn says what is in view, and holds
// what is read in its place when parts above it get their heights. Without one around it all parts are made.
class PartColumn : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QAbstractItemModel* model READ model WRITE setModel NOTIFY modelChanged)
    Q_PROPERTY(QQmlComponent* delegate READ delegate WRITE setDelegate NOTIFY delegateChanged)
    Q_PROPERTY(Korvi::RowEstimate* estimate READ estimate WRITE setEstimate NOTIFY estimateChanged)

public:
    explicit PartColumn(QQuickItem* parent = nullptr);
    ~PartColumn() override;

    QAbstractItemModel* model() const { return m_model; }
    void setModel(QAbstractItemModel* model);
    QQmlComponent* delegate() const { return m_delegate; }
    void setDelegate(QQmlComponent* delegate);
    RowEstimate* estimate() const { return m_estimate; }
    void setEstimate(RowEstimate* estimate);

    // Makes the parts between these heights below its top, and lets go of those further off than `reach`.
    void see(double from, double to, double reach);

    Q_INVOKABLE QQuickItem* itemAt(int part) const { return m_items.find(part); }   // null for one far from the view
    Q_INVOKABLE int partAt(qreal y) const { return m_heights.rowAt(y); }            // the nearest one; -1 without parts
    Q_INVOKABLE qreal positionOf(int part) const { return m_heights.before(part); } // of its top, known or estimated
    Q_INVOKABLE int liveParts() const { return static_cast<int>(m_items.live().size()); }

signals:
    void modelChanged();
    void delegateChanged();
    void estimateChanged();

protected:
    void componentComplete() override;
    void itemChange(ItemChange change, const ItemChangeData& data) override;
    void geometryChange(const QRectF& now, const QRectF& before) override;

private:
    void resetParts();
    void partsInserted(int first, int last);
    void partsChanged(int first, int last, const QList<int>& roles);
    std::vector<double> estimates(int first, int count) const;
    bool measure(int part);
    void place();
    void changed();
    void findColumn();
    bool holdsFocus(int part) const;

    QPointer<QAbstractItemModel> m_model;
    QPointer<QQmlComponent> m_delegate;
    QPointer<RowEstimate> m_estimate;
    QPointer<VirtualColumn> m_column;
    RowHeights m_heights;
    RowItems m_items;
    bool m_estimatesOld = false;
    bool m_showingAll = false;
};

}
