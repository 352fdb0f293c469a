#include "TableRows.h"

#include "Pipeline/TableText.h"
#include "TableCell.h"

#include <algorithm>
#include <numeric>

namespace Korvi {

TableRows::TableRows(QObject* parent)
    : QAbstractListModel(parent) {
    connect(this, &TableRows::styleChanged, this, &TableRows::restyle);
    connect(this, &TableRows::measuresChanged, this, &TableRows::fitColumns);
}

void TableRows::setCellFont(const QFont& font) {
    if (font == m_cellFont)
        return;
    m_cellFont = font;
    emit styleChanged();
}

void TableRows::setHeaderFont(const QFont& font) {
    if (font == m_headerFont)
        return;
    m_headerFont = font;
    emit styleChanged();
}

void TableRows::setCodeFont(const QFont& font) {
    if (font == m_codeFont)
        return;
    m_codeFont = font;
    emit styleChanged();
}

void TableRows::setTable(const MarkdownTable& table) {
    if (table == m_table)
        return;
    const MarkdownTable old = std::exchange(m_table, table);
    const auto& before = old.content();
    const auto& now = table.content();
    const int count = now.headers.isEmpty() && now.rows.empty() ? 0 : static_cast<int>(now.rows.size()) + 1;
    // The last row may have been read before all of it was there.
    const std::size_t kept = std::min(before.rows.size(), now.rows.size()) - (before.rows.empty() ? 0 : 1);
    const bool grew = m_count > 0 && count >= m_count && before.headers == now.headers &&
        before.alignments == now.alignments &&
        (before.rows.empty() ||
            std::equal(now.rows.begin(), now.rows.begin() + static_cast<std::ptrdiff_t>(kept), before.rows.begin()));
    if (!grew) {
        beginResetModel();
        m_count = count;
        resetWidths();
        addToWidths(0);
        endResetModel();
        align();
        fitColumns();
    } else {
        const int last = m_count - 1;
        const bool lastChanged = last > 0 && before.rows.back() != now.rows[static_cast<std::size_t>(last) - 1];
        measureFrom(lastChanged ? last : m_count);
        if (lastChanged)
            emit dataChanged(index(last), index(last), {CellsRole});
        if (count > m_count) {
            beginInsertRows({}, m_count, count - 1);
            m_count = count;
            endInsertRows();
        }
    }
    emit tableChanged();
}

void TableRows::componentComplete() {
    m_isComplete = true;
    restyle();
}

void TableRows::restyle() {
    if (!m_isComplete)
        return;
    resetWidths();
    measureFrom(0);
    if (m_count > 0)
        emit dataChanged(index(0), index(m_count - 1), {CellsRole});
}

void TableRows::resetWidths() {
    m_widths.reset(m_cellFont, m_headerFont, m_codeFont, m_widest);
}

void TableRows::measureFrom(int firstRow) {
    addToWidths(firstRow);
    align();
    fitColumns();
}

void TableRows::addToWidths(int firstRow) {
    if (!m_isComplete)
        return;
    const auto& content = m_table.content();
    const auto shown = [](const QStringList& cells) { return cells.mid(0, mostColumns); };
    if (firstRow == 0)
        m_widths.addHeader(shown(content.headers));
    for (auto row = static_cast<std::size_t>(std::max(firstRow, 1)); row <= content.rows.size(); ++row)
        m_widths.addRow(shown(content.rows[row - 1]));
}

void TableRows::fitColumns() {
    if (!m_isComplete)
        return;
    QList<qreal> widths = m_widths.fit(m_available, m_around, m_readable);
    if (widths == m_columnWidths)
        return;
    m_columnWidths = std::move(widths);
    emit columnWidthsChanged();
}

void TableRows::align() {
    const auto& told = m_table.content().alignments;
    QList<int> alignments;
    for (std::size_t i = 0; i < static_cast<std::size_t>(m_widths.count()); ++i) {
        switch (i < told.size() ? told[i] : Markdown::Alignment::leading) {
        case Markdown::Alignment::leading: alignments.append(Qt::AlignLeft); break;
        case Markdown::Alignment::center: alignments.append(Qt::AlignHCenter); break;
        case Markdown::Alignment::trailing: alignments.append(Qt::AlignRight); break;
        }
    }
    if (alignments == m_alignments)
        return;
    m_alignments = alignments;
    emit alignmentsChanged();
}

qreal TableRows::totalWidth() const {
    return std::accumulate(m_columnWidths.begin(), m_columnWidths.end(), 0.0);
}

QStringList TableRows::cellsOf(int row) const {
    const auto& content = m_table.content();
    return row == 0 ? content.headers : content.rows[static_cast<std::size_t>(row) - 1];
}

QString TableRows::asText(int firstRow, int endRow) const {
    firstRow = std::max(firstRow, 0);
    endRow = std::min(endRow, m_count);
    if (firstRow >= endRow)
        return {};
    Markdown::Block::Table part;
    part.headers = cellsOf(firstRow);
    for (int row = firstRow + 1; row < endRow; ++row)
        part.rows.push_back(cellsOf(row));
    return Markdown::tableAsTsv(part);
}

int TableRows::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : m_count;
}

QVariant TableRows::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= m_count)
        return {};
    if (role == IsHeaderRole)
        return index.row() == 0;
    if (role != CellsRole)
        return {};
    QStringList cells = cellsOf(index.row());
    if (cells.size() > mostColumns)
        cells = cells.first(mostColumns - 1) << cells.sliced(mostColumns - 1).join(QStringLiteral(" | "));
    QVariantList shown;
    for (QString& cell : cells) {
        if (cell.size() > longestCell) {
            cell.truncate(longestCell - (cell.at(longestCell - 1).isHighSurrogate() ? 1 : 0));
            cell += u'…';
        }
        const TableCell::Markup markup = TableCell::markup(cell, m_codeFont, m_codeColor, m_codeBackground);
        shown.append(QVariantMap{{QStringLiteral("text"), markup.text}, {QStringLiteral("isRich"), markup.isRich},
            {QStringLiteral("plain"), markup.plain}});
    }
    return shown;
}

QHash<int, QByteArray> TableRows::roleNames() const {
    return {{CellsRole, "cells"}, {IsHeaderRole, "isHeader"}};
}

}
