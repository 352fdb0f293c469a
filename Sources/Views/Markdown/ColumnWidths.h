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

    // `widest` is where a text is wrapped in any case.
    void reset(const QFont& cellFont, const QFont& strongFont, const QFont& codeFont, qreal widest);
    void addHeader(const QStringList& cells) { add(cells, m_strongMetrics); }
    void addRow(const QStringList& cells) { add(cells, m_cellMetrics); }

    qsizetype count() const { return static_cast<qsizetype>(m_columns.size()); }
    // One for each column: together `available` where that is possible without breaking a word (of no more than
    // `readable`); more where it is not. `around` is what each column has beside its text.
    QList<qreal> fit(qreal available, qreal around, qreal readable) const;

private:
    struct Column {
        qreal wanted = narrowest;
        qreal widestWord = narrowest;
        qsizetype longest = 0; // characters, of what was measured
        int measured = 0;
    };

    void add(const QStringList& cells, const QFontMetricsF& metrics);
    void measure(Column& column, const QString& cell, const QFontMetricsF& metrics) const;

    std::vector<Column> m_columns;
    QFontMetricsF m_cellMetrics{QFont()};
    QFontMetricsF m_strongMetrics{QFont()};
    QFontMetricsF m_codeMetrics{QFont()};
    qreal m_widest = 0;
};

}
