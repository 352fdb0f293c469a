#pragma once

#include "PartKind.h"
#include "RowEstimate.h"
#include "RowHeights.h"
#include "RowItems.h"

#include <QQmlListProperty>

namespace Korvi {

class VirtualColumn;

// The parts of one row of a VirtualColumn, one under the other: like the rows themselves, only those in view and near it
// are items, so that a row of any height costs what is seen of it. The VirtualColumn says what is in view, and holds
// what is read in its place when parts above it get their heights. Without one around it all parts are made.
//
// Parts of different kinds (role `kind`) have delegates of their own, listed as `kinds`; a kind that is not listed takes no
// room. The role `gap`, if the model has it, is the space above a part, for text of 13 pixels.
class PartColumn : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QAbstractItemModel* model READ model WRITE setModel NOTIFY modelChanged)
    Q_PROPERTY(QQmlComponent* delegate READ delegate WRITE setDelegate NOTIFY delegateChanged)
    Q_PROPERTY(QQmlListProperty<Korvi::PartKind> kinds READ kinds CONSTANT)
    Q_PROPERTY(qreal gapScale READ gapScale WRITE setGapScale NOTIFY gapScaleChanged)
    Q_PROPERTY(Korvi::RowEstimate* estimate READ estimate WRITE setEstimate NOTIFY estimateChanged)

public:
    explicit PartColumn(QQuickItem* parent = nullptr);
    ~PartColumn() override;

    QAbstractItemModel* model() const { return m_model; }
    void setModel(QAbstractItemModel* model);
    QQmlComponent* delegate() const { return m_delegate; }
    void setDelegate(QQmlComponent* delegate);
    QQmlListProperty<PartKind> kinds();
    qreal gapScale() const { return m_gapScale; }
    void setGapScale(qreal scale);
    RowEstimate* estimate() const { return m_estimate; }
    void setEstimate(RowEstimate* estimate);

    // Makes the parts between these heights below its top, and lets go of those further off than `reach`.
    void see(double from, double to, double reach);

    Q_INVOKABLE QQuickItem* itemAt(int part) const { return m_items.find(part); } // null for one far from the view
    Q_INVOKABLE int partAt(qreal y) const { return m_heights.rowAt(y); }          // the nearest one; -1 without parts
    Q_INVOKABLE qreal positionOf(int part) const { return m_heights.before(part) + gap(part); } // of its top
    Q_INVOKABLE QQuickItem* showPart(int part);   // makes it; it stays if it is near the view or takes the keyboard
    Q_INVOKABLE int focusedPart() const;          // that holds the keyboard focus; -1 for none
    Q_INVOKABLE QVariantList partsAtHand() const; // the numbers of those that are items, in their order
    Q_INVOKABLE int liveParts() const { return static_cast<int>(m_items.live().size()); }

signals:
    void modelChanged();
    void delegateChanged();
    void gapScaleChanged();
    void estimateChanged();
    void partMade(int part, QQuickItem* item);
    // Where the pointer is that pressed a text in it, below its top left corner.
    void pointerPressed(qreal x, qreal y);
    void pointerMoved(qreal x, qreal y);
    void pointerReleased();

protected:
    bool childMouseEventFilter(QQuickItem* item, QEvent* event) override;
    void componentComplete() override;
    void itemChange(ItemChange change, const ItemChangeData& data) override;
    void geometryChange(const QRectF& now, const QRectF& before) override;

private:
    void resetParts();
    void partsInserted(int first, int last);
    void partsRemoved(int first, int last);
    void partsChanged(int first, int last, const QList<int>& roles);
    static void appendKind(QQmlListProperty<PartKind>* list, PartKind* kind);
    double gap(int part) const; // pixels, above it
    QQuickItem* obtain(int part);
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
    QList<PartKind*> m_kinds;
    RowHeights m_heights; // each with the gap above it
    RowItems m_items;
    int m_gapRole = -1;
    qreal m_gapScale = 1;
    bool m_pointerIsDown = false;
    bool m_estimatesOld = false;
    bool m_showingAll = false;
};

}
