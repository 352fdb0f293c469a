#include "TableHeights.h"

#include "TableRows.h"

#include <algorithm>
#include <cmath>

namespace Korvi {

double TableHeights::heightOf(const QAbstractItemModel& model, int row) const {
    double lines = 1;
    if (const auto* rows = qobject_cast<const TableRows*>(&model)) {
        const QStringList cells = rows->cellsOf(row);
        for (qsizetype i = 0; i < std::min(cells.size(), m_columnWidths.size()); ++i) {
            const double width =
                static_cast<double>(std::min(cells[i].size(), TableRows::longestCell)) * m_characterWidth;
            lines = std::max(lines, std::ceil(width / std::max(1.0, m_columnWidths[i] - m_aroundText)));
        }
    }
    return m_aroundLines + lines * m_lineHeight;
}

}
