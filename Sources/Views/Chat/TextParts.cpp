#include "TextParts.h"

#include <algorithm>

namespace Korvi {

void TextParts::show(const SharedText& text) {
    if (text == m_text)
        return;
    const bool grew = !m_text.isEmpty() && text.continues(m_text);
    m_text = text;
    if (grew) {
        const int last = count() - 1;
        const std::vector<qsizetype> starts = startsFrom(m_starts.back());
        emit dataChanged(index(last), index(last), {PartRole});
        if (starts.size() > 1) {
            beginInsertRows({}, last + 1, last + static_cast<int>(starts.size()) - 1);
            m_starts.insert(m_starts.end(), starts.begin() + 1, starts.end());
            endInsertRows();
        }
    } else {
        beginResetModel();
        m_starts = m_text.isEmpty() ? std::vector<qsizetype>() : startsFrom(0);
        endResetModel();
    }
    emit countChanged();
    emit textChanged();
}

qsizetype TextParts::endOfPart(qsizetype start) const {
    if (m_text.size() - start <= partLength)
        return m_text.size();
    const QStringView text = m_text.view();
    const qsizetype lineFeed = text.indexOf(u'\n', start + partLength);
    if (lineFeed >= 0 && lineFeed - start <= longestPart)
        return lineFeed;
    if (m_text.size() - start <= longestPart)
        return m_text.size();
    const qsizetype space = text.lastIndexOf(u' ', start + longestPart);
    if (space > start)
        return space;
    // Not between the two halves of a character.
    return start + longestPart - (text.at(start + longestPart).isLowSurrogate() ? 1 : 0);
}

std::vector<qsizetype> TextParts::startsFrom(qsizetype start) const {
    std::vector<qsizetype> starts{start};
    for (;;) {
        const qsizetype end = endOfPart(starts.back());
        if (end >= m_text.size())
            return starts;
        const QChar border = m_text.view().at(end);
        starts.push_back(border == u'\n' || border == u' ' ? end + 1 : end);
    }
}

QString TextParts::part(int row) const {
    const qsizetype start = m_starts[static_cast<std::size_t>(row)];
    return m_text.view().sliced(start, endOfPart(start) - start).toString();
}

QString TextParts::between(int firstPart, int from, int lastPart, int to) const {
    if (firstPart < 0 || lastPart >= count() || firstPart > lastPart)
        return {};
    const qsizetype start = m_starts[static_cast<std::size_t>(firstPart)] + from;
    const qsizetype end = m_starts[static_cast<std::size_t>(lastPart)] + to;
    return m_text.view().mid(start, std::max<qsizetype>(0, end - start)).toString();
}

QString TextParts::slice(int from, int to) const {
    return m_text.view().mid(from, std::max(0, to - from)).toString();
}

int TextParts::lengthOf(int row) const {
    return row < 0 || row >= count() ? 0 : static_cast<int>(part(row).size());
}

int TextParts::startOf(int row) const {
    return row < 0 || row >= count() ? 0 : static_cast<int>(m_starts[static_cast<std::size_t>(row)]);
}

int TextParts::partOf(int position) const {
    const auto next = std::ranges::upper_bound(m_starts, static_cast<qsizetype>(std::max(position, 0)));
    return static_cast<int>(next - m_starts.begin()) - 1;
}

int TextParts::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant TextParts::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= count() || role != PartRole)
        return {};
    return part(index.row());
}

QHash<int, QByteArray> TextParts::roleNames() const {
    return {{PartRole, "part"}};
}

}
