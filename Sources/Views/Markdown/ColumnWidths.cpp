#include "ColumnWidths.h"

#include "TableCell.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace Korvi {

namespace {

// Cells about as long as the longest are measured too, but not thousands of them.
constexpr double aboutAsLong = 0.8;
constexpr int manyMeasured = 40;
constexpr qsizetype longestMeasured = 400; // characters: more is wider than any column

}

void ColumnWidths::reset(const QFont& cellFont, const QFont& strongFont, const QFont& codeFont, qreal widest) {
    m_columns.clear();
    m_cellMetrics = QFontMetricsF(cellFont);
    m_strongMetrics = QFontMetricsF(strongFont);
    m_codeMetrics = QFontMetricsF(codeFont);
    m_widest = widest;
}

void ColumnWidths::add(const QStringList& cells, const QFontMetricsF& metrics) {
    if (cells.size() > count())
        m_columns.resize(static_cast<std::size_t>(cells.size()));
    for (std::size_t i = 0; i < static_cast<std::size_t>(cells.size()); ++i) {
        Column& column = m_columns[i];
        const QString& cell = cells[static_cast<qsizetype>(i)];
        const bool isLongest = cell.size() > column.longest;
        const bool mayBeWidest = static_cast<double>(cell.size()) > aboutAsLong * static_cast<double>(column.longest);
        if (column.wanted >= m_widest || (!isLongest && (!mayBeWidest || column.measured >= manyMeasured)))
            continue;
        ++column.measured;
        column.longest = std::max(column.longest, cell.size());
        measure(column, cell, metrics);
    }
}

void ColumnWidths::measure(Column& column, const QString& cell, const QFontMetricsF& metrics) const {
    qreal width = 0;
    qreal word = 0;
    for (const Markdown::Run& run : TableCell::runs(cell.left(longestMeasured))) {
        const QFontMetricsF& used = run.style == Markdown::Style::code ? m_codeMetrics
            : run.style == Markdown::Style::bold                       ? m_strongMetrics
                                                                       : metrics;
        width += used.horizontalAdvance(run.text);
        for (const QString& part : run.text.split(u' '))
            word = std::max(word, used.horizontalAdvance(part));
    }
    column.wanted = std::clamp(std::ceil(width) + 1, column.wanted, m_widest);
    column.widestWord = std::clamp(std::ceil(word) + 1, column.widestWord, m_widest);
}

QList<qreal> ColumnWidths::fit(qreal available, qreal around, qreal readable) const {
    QList<qreal> widths;
    for (const Column& column : m_columns)
        widths.append(column.wanted);
    const qreal room = available - around * static_cast<qreal>(count());
    const auto total = [&] { return std::accumulate(widths.begin(), widths.end(), 0.0); };
    if (total() < room) { // each grows by its share
        const qreal factor = room / std::max(1.0, total());
        for (qreal& width : widths)
            width = std::floor(width * factor);
    } else if (total() > room) {
        // The widest give way first, down to one common width.
        QList<qreal> sorted = widths;
        std::ranges::sort(sorted);
        qreal rest = room;
        qreal limit = 0;
        for (qsizetype i = 0; i < sorted.size(); ++i) {
            const qreal share = rest / static_cast<qreal>(sorted.size() - i);
            if (sorted[i] > share) {
                limit = std::floor(share);
                break;
            }
            rest -= sorted[i];
        }
        for (std::size_t i = 0; i < m_columns.size(); ++i) {
            qreal& width = widths[static_cast<qsizetype>(i)];
            width = std::min(width, std::max(limit, std::min(m_columns[i].widestWord, readable)));
        }
    }
    for (qreal& width : widths)
        width += around;
    return widths;
}

}
