#include "CodeHeights.h"

#include "Chat/TextParts.h"

#include <QAbstractItemModel>

#include <algorithm>
#include <cmath>

namespace Korvi {

double CodeHeights::heightOf(const QAbstractItemModel& model, int row) const {
    const QString part = model.data(model.index(row, 0), TextParts::PartRole).toString();
    if (m_wrapColumns <= 0)
        return static_cast<double>(part.count(u'\n') + 1) * m_lineHeight;
    double lines = 0;
    for (const QStringView line : QStringView(part).tokenize(u'\n'))
        lines += std::max(1.0, std::ceil(static_cast<double>(line.size()) / m_wrapColumns));
    return lines * m_lineHeight;
}

}
