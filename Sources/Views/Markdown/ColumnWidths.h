#pragma once

#include <QFontMetricsF>
#include <QList>
#include <QStringList>

#include <vector>

namespace Korvi {

// How wide the columns of a table want to be, and how wide they get. Of many cells only those are measured that may be
// the widest of their column.
class ColumnWidths {
public:
    // Pixels, for the text without what is around it.
    static constexpr qreal narrowest = 24;

    void reset(const QFont& cellFont, const QFont& headerFont, qreal widest);
    void addHeader(const QStringList& cells) { add(cells, m_headerMetrics); }
    void addRow(const QStringList& cells) { add(cells, m_cellMetrics); }

    qsizetype count() const { return static_cast<qsizetype>(m_columns.size()); }
    // One for each column: together `available` where that is possible with no column narrower than the smaller of what
    // it wants and `readable`; more where it is not. `around` is what each column has beside its text.
    QList<qreal> fit(qreal available, qreal around, qreal readable) const;

private:
    struct Column {
        qreal wanted = narrowest;
        qsizetype longest = 0; // characters, of what was measured
        int measured = 0;
    };

    void add(const QStringList& cells, const QFontMetricsF& metrics);

    std::vector<Column> m_columns;
    QFontMetricsF m_cellMetrics{QFont()};
    QFontMetricsF m_headerMetrics{QFont()};
    qreal m_widest = 0;
};

}
