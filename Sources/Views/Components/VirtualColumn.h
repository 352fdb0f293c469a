#pragma once

#include "ReadingAnchor.h"
#include "RowEstimate.h"
#include "RowHeights.h"
#include "RowItems.h"
#include "ScrollArea.h"
#include "ScrollMetrics.h"

#include <QQuickWindow>
#include <QSet>
#include <QVariantAnimation>

namespace Korvi {

class PartColumn;

// A column of rows in a Flickable, of which only those in view and near it exist as items. Stands in the Flickable's
// content at 0, 0 and takes care of its contentY, contentHeight and topMargin.
//
// Every row has a known height: that of its item, or that which it had when it was last laid out, or an estimate. Rows
// may change their height at any time. What the reader sees stays where it is: the view hangs on what is read at its
// upper edge, or on what was pressed since it was last scrolled, or, while `following`, on the end of the content.
// Reading back lets go of the end, coming back to it takes it up again.
//
// A held *turn* gives the rows from `turnRow` on at least a whole view: the turn's first row stands at the top, and
// what comes after it grows into the space below.
//
// All this is settled once per frame, before it is drawn; forceLayout() settles it at once.
class VirtualColumn : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QQuickItem* flickable READ flickable WRITE setFlickable NOTIFY flickableChanged)
    Q_PROPERTY(QAbstractItemModel* model READ model WRITE setModel NOTIFY modelChanged)
    Q_PROPERTY(QQmlComponent* delegate READ delegate WRITE setDelegate NOTIFY delegateChanged)
    Q_PROPERTY(Korvi::RowEstimate* estimate READ estimate WRITE setEstimate NOTIFY estimateChanged)
    Q_PROPERTY(qreal spacing READ spacing WRITE setSpacing NOTIFY spacingChanged)             // between rows
    Q_PROPERTY(qreal topPadding READ topPadding WRITE setTopPadding NOTIFY topPaddingChanged) // above the first
    Q_PROPERTY(qreal bottomPadding READ bottomPadding WRITE setBottomPadding NOTIFY bottomPaddingChanged)
    Q_PROPERTY(qreal farDistance MEMBER m_farDistance NOTIFY farDistanceChanged)  // from where on the end is far
    Q_PROPERTY(int jumpDuration MEMBER m_jumpDuration NOTIFY jumpDurationChanged) // milliseconds, 0 for no animation
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    Q_PROPERTY(bool following READ following NOTIFY followingChanged)
    Q_PROPERTY(int turnRow READ turnRow NOTIFY turnRowChanged) // -1 while no turn is held
    Q_PROPERTY(qreal position READ position NOTIFY scrolled)   // of the view's upper edge from the top of the content
    Q_PROPERTY(qreal distanceToEnd READ distanceToEnd NOTIFY scrolled)
    Q_PROPERTY(bool farFromEnd READ farFromEnd NOTIFY scrolled) // of the last row; free space below it does not count
    Q_PROPERTY(Korvi::ScrollMetrics scrollMetrics READ scrollMetrics NOTIFY scrollMetricsChanged)
    Q_PROPERTY(int firstVisibleRow READ firstVisibleRow NOTIFY scrolled) // -1 without rows
    Q_PROPERTY(int lastVisibleRow READ lastVisibleRow NOTIFY scrolled)
    Q_PROPERTY(int focusedRow READ focusedRow NOTIFY focusedRowChanged) // the row that holds the keyboard focus, or -1

public:
    enum Jump { AtOnce, Animated };
    Q_ENUM(Jump)

    explicit VirtualColumn(QQuickItem* parent = nullptr);
    ~VirtualColumn() override;

    QQuickItem* flickable() const { return m_area ? m_area->item() : nullptr; }
    void setFlickable(QQuickItem* flickable);
    QAbstractItemModel* model() const { return m_model; }
    void setModel(QAbstractItemModel* model);
    QQmlComponent* delegate() const { return m_delegate; }
    void setDelegate(QQmlComponent* delegate);
    RowEstimate* estimate() const { return m_estimate; }
    void setEstimate(RowEstimate* estimate);
    qreal spacing() const { return m_spacing; }
    void setSpacing(qreal spacing);
    qreal topPadding() const { return m_topPadding; }
    void setTopPadding(qreal padding);
    qreal bottomPadding() const { return m_bottomPadding; }
    void setBottomPadding(qreal padding);

    int count() const { return m_heights.count(); }
    bool following() const { return m_following; }
    int turnRow() const { return m_turnRow; }
    qreal position() const { return m_top; }
    qreal distanceToEnd() const;
    bool farFromEnd() const;
    ScrollMetrics scrollMetrics() const { return m_metrics; }
    int firstVisibleRow() const;
    int lastVisibleRow() const;
    int focusedRow() const { return m_focusedRow; }

    // For parts that stand in one of its rows: they are told what of them is in view.
    void rememberParts(PartColumn* parts) { m_parts.insert(parts); }
    void forgetParts(PartColumn* parts) { m_parts.remove(parts); }

    // Shows the end and follows it; lets a held turn go. Unless forced, leaves the view alone when all of it is seen.
    Q_INVOKABLE void showEnd(Korvi::VirtualColumn::Jump jump = AtOnce, bool forced = true);
    // Holds the turn that begins with that row.
    Q_INVOKABLE void showTurn(int row, Korvi::VirtualColumn::Jump jump = AtOnce);
    // That row at the top, as far as there is enough below it.
    Q_INVOKABLE void positionAtRow(int row, Korvi::VirtualColumn::Jump jump = AtOnce);
    Q_INVOKABLE void scrollBy(qreal pixels);
    Q_INVOKABLE void scrollTo(qreal position);
    // Scrolls no more than it takes to see that part of a row; its beginning, when it is higher than the view.
    Q_INVOKABLE void reveal(int row, qreal y, qreal height);
    // Keeps what is seen in its place while the content changes under the reader's hand, even at the end.
    Q_INVOKABLE void letGo();
    Q_INVOKABLE void forceLayout();

    Q_INVOKABLE QQuickItem* itemAt(int row) const { return m_items.find(row); } // null for a row far from the view
    Q_INVOKABLE qreal heightAt(int row) const;                                  // known or estimated
    Q_INVOKABLE qreal rowPosition(int row) const;                               // of its top below that of the content
    Q_INVOKABLE int liveRows() const { return static_cast<int>(m_items.live().size()); }

signals:
    void flickableChanged();
    void modelChanged();
    void delegateChanged();
    void estimateChanged();
    void spacingChanged();
    void topPaddingChanged();
    void bottomPaddingChanged();
    void farDistanceChanged();
    void jumpDurationChanged();
    void countChanged();
    void followingChanged();
    void turnRowChanged();
    void scrolled();
    void scrollMetricsChanged();
    void focusedRowChanged();
    void focusedRowRemoved(int row); // which number it had; the keyboard is nowhere now

protected:
    void componentComplete() override;
    void itemChange(ItemChange change, const ItemChangeData& data) override;
    void geometryChange(const QRectF& now, const QRectF& before) override;
    void updatePolish() override;
    bool eventFilter(QObject* window, QEvent* event) override;

private:
    static constexpr double unknown = 0;

    void connectModel();
    void rowsInserted(int first, int last);
    void rowsRemoved(int first, int last);
    void rowsChanged(int first, int last, const QList<int>& roles);
    void resetRows();
    std::vector<double> estimates(int first, int count) const;
    void estimateAnew();

    void layout();
    double topWanted() const;
    bool fill();
    void showParts(int row);
    bool measure(int row);
    void place();
    void releaseFarRows();
    bool prefetch();
    void keepAnchor();
    void recordAnchor();
    bool recordText(double from, double to);
    bool recordLeaf(double from, double to);
    void hold(double y);
    void publish();

    void readerScrolled();
    void startJump(Jump jump);
    void setFollowing(bool following);
    void setTurnRow(int row);
    void updateFocusedRow();

    double stride(double height) const { return height + m_spacing; }
    double end() const;        // of the last row and the padding, below the top of the content
    double contentEnd() const; // with the space that a held turn needs
    double viewHeight() const { return m_area ? m_area->height() : 0; }

    QPointer<QAbstractItemModel> m_model;
    QPointer<QQmlComponent> m_delegate;
    QPointer<RowEstimate> m_estimate;
    std::unique_ptr<ScrollArea> m_area;
    QPointer<QQuickWindow> m_window;
    QMetaObject::Connection m_windowFocus;
    RowHeights m_heights;            // each with the spacing below it
    std::vector<double> m_estimates; // what each row's height was first taken for, or `unknown`
    RowItems m_items;
    QSet<PartColumn*> m_parts;
    ReadingAnchor m_anchor;
    QVariantAnimation m_jump;
    double m_jumpLength = 0; // from the view to the aim
    double m_top = 0;        // of the view, below the top of the content
    double m_shownTop = 0;   // the same when it was last laid out
    double m_origin = 0;     // of the content in the Flickable's coordinates
    qreal m_spacing = 0;
    qreal m_topPadding = 0;
    qreal m_bottomPadding = 0;
    qreal m_farDistance = 80;
    int m_jumpDuration = 0;
    bool m_following = true;
    bool m_wasScrolled = false;
    bool m_isHeld = false;    // the anchor is what the reader's hand is on
    bool m_mayResume = false; // following goes on if the end is still in view after the change
    int m_turnRow = -1;
    int m_focusedRow = -1;
    ScrollMetrics m_metrics;
    bool m_estimatesOld = false;
    bool m_layingOut = false;
};

}
