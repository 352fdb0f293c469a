#include "Chat/ChatFilterModel.h"
#include "Chat/ChatDate.h"
#include "Chat/FoundChat.h"
#include "Chat/SearchText.h"

#include <algorithm>
#include <limits>

namespace Korvi {

void ChatFilterModel::setSource(QAbstractItemModel* source) {
    if (source == m_source)
        return;
    if (m_source)
        m_source->disconnect(this);
    m_source = source;
    if (source) {
        using Model = QAbstractItemModel;
        connect(source, &Model::modelReset, this, &ChatFilterModel::rebuild);
        connect(source, &Model::layoutChanged, this, &ChatFilterModel::rebuild);
        connect(source, &Model::rowsInserted, this,
            [this](const QModelIndex&, int first, int last) { sourceInserted(first, last); });
        connect(source, &Model::rowsAboutToBeRemoved, this,
            [this](const QModelIndex&, int first, int last) { sourceGoing(first, last); });
        connect(source, &Model::rowsRemoved, this,
            [this](const QModelIndex&, int first, int last) { sourceGone(first, last); });
        connect(source, &Model::rowsMoved, this,
            [this](const QModelIndex&, int first, int last, const QModelIndex&, int destination) {
                sourceMoved(first, last, destination);
            });
        connect(source, &Model::dataChanged, this,
            [this](const QModelIndex& first, const QModelIndex& last, const QList<int>& roles) {
                sourceDataChanged(first.row(), last.row(), roles);
            });
    }
    rebuild();
    emit sourceChanged();
}

void ChatFilterModel::setQuery(const QString& query) {
    if (query == m_query)
        return;
    m_query = query;
    const QStringList words = searchWords(query);
    if (words != m_words) {
        m_words = words;
        becomeAccepted();
        if (!m_rows.empty())
            emit dataChanged(index(0), index(count() - 1), {FoundChat::MarksRole});
    }
    emit queryChanged();
}

void ChatFilterModel::setNow(const QDateTime& now) {
    if (now == m_now)
        return;
    m_now = now;
    if (!m_rows.empty())
        emit dataChanged(index(0), index(count() - 1), {FoundChat::AgeRole});
    emit nowChanged();
}

int ChatFilterModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant ChatFilterModel::data(const QModelIndex& index, int role) const {
    if (!m_source || !index.isValid() || index.row() >= count())
        return {};
    if (role == FoundChat::MarksRole)
        return m_words.isEmpty() ? QVariantList() : FoundChat::marks(findWords(nameAt(index.row()), m_words));
    if (role == FoundChat::AgeRole)
        return formatChatDate(valueAt(index.row(), "updatedAt").toString(), m_now);
    return m_source->index(m_rows[static_cast<std::size_t>(index.row())], 0).data(role);
}

QHash<int, QByteArray> ChatFilterModel::roleNames() const {
    return FoundChat::roleNames(m_source);
}

int ChatFilterModel::rowOf(qint64 chatId) const {
    for (int row = 0; row < count(); ++row) {
        if (chatIdAt(row) == chatId)
            return row;
    }
    return -1;
}

qint64 ChatFilterModel::chatIdAt(int row) const {
    const QVariant id = valueAt(row, "chatId");
    return id.isValid() ? id.toLongLong() : -1;
}

QString ChatFilterModel::nameAt(int row) const {
    return valueAt(row, "name").toString();
}

bool ChatFilterModel::isFavoriteAt(int row) const {
    return valueAt(row, "isFavorite").toBool();
}

QVariant ChatFilterModel::valueAt(int row, const char* role) const {
    if (!m_source || row < 0 || row >= count())
        return {};
    return m_source->index(m_rows[static_cast<std::size_t>(row)], 0).data(roleOf(role));
}

void ChatFilterModel::becomeAccepted() {
    std::vector<int> wanted;
    for (int row = 0; row < static_cast<int>(m_keys.size()); ++row) {
        if (accepts(row))
            wanted.push_back(row);
    }
    std::size_t at = 0; // before it the rows are those that are wanted
    for (int steps = 0; at < m_rows.size() || at < wanted.size();) {
        if (at < m_rows.size() && at < wanted.size() && m_rows[at] == wanted[at]) {
            ++at;
            continue;
        }
        const int nextKept = at < wanted.size() ? wanted[at] : std::numeric_limits<int>::max();
        const int nextShown = at < m_rows.size() ? m_rows[at] : std::numeric_limits<int>::max();
        const bool atOnce = ++steps > stepLimit;
        std::size_t end = at;
        while (end < m_rows.size() && (atOnce || m_rows[end] < nextKept))
            ++end;
        if (end > at)
            removeAt(static_cast<int>(at), static_cast<int>(end) - 1);
        if (end > at && !atOnce)
            continue;
        end = at;
        while (end < wanted.size() && (atOnce || wanted[end] < nextShown))
            ++end;
        const auto place = [&](std::size_t row) { return wanted.begin() + static_cast<std::ptrdiff_t>(row); };
        if (end > at)
            insertAt(static_cast<int>(at), std::vector<int>(place(at), place(end)));
        at = end;
    }
}

void ChatFilterModel::rebuild() {
    beginResetModel();
    m_roles.clear();
    m_keys.clear();
    m_rows.clear();
    if (m_source) {
        m_roles = FoundChat::rolesOf(*m_source);
        for (int row = 0; row < m_source->rowCount(); ++row) {
            m_keys.push_back(keyOf(row));
            if (accepts(row))
                m_rows.push_back(row);
        }
    }
    endResetModel();
    emit countChanged();
}

void ChatFilterModel::sourceInserted(int first, int last) {
    if (m_roles.isEmpty() || m_keys.empty())
        return rebuild(); // some models know their roles only from their first row
    const int added = last - first + 1;
    const int row = placeOf(first);
    for (int i = row; i < count(); ++i)
        m_rows[static_cast<std::size_t>(i)] += added;
    std::vector<QString> keys;
    for (int i = first; i <= last; ++i)
        keys.push_back(keyOf(i));
    m_keys.insert(m_keys.begin() + first, keys.begin(), keys.end());
    std::vector<int> accepted;
    for (int i = first; i <= last; ++i) {
        if (accepts(i))
            accepted.push_back(i);
    }
    if (!accepted.empty())
        insertAt(row, accepted);
}

void ChatFilterModel::sourceGoing(int first, int last) {
    const int begin = placeOf(first);
    const int end = placeOf(last + 1);
    if (begin < end)
        removeAt(begin, end - 1);
}

void ChatFilterModel::sourceGone(int first, int last) {
    const int removed = last - first + 1;
    m_keys.erase(m_keys.begin() + first, m_keys.begin() + last + 1);
    for (int i = placeOf(first); i < count(); ++i)
        m_rows[static_cast<std::size_t>(i)] -= removed;
}

void ChatFilterModel::sourceMoved(int first, int last, int destination) {
    const int begin = placeOf(first);
    const int end = placeOf(last + 1);
    const int to = placeOf(destination);
    const bool seen = begin < end && (to < begin || to > end);
    if (seen)
        beginMoveRows({}, begin, end - 1, {}, to);
    const auto rotate = [](auto& list, int from, int until, int target) {
        const auto at = [&](int place) { return list.begin() + place; };
        if (target < from)
            std::rotate(at(target), at(from), at(until));
        else if (target > until)
            std::rotate(at(from), at(until), at(target));
    };
    rotate(m_keys, first, last + 1, destination);
    if (seen)
        rotate(m_rows, begin, end, to);
    // The same rows under their new numbers.
    const int length = last - first + 1;
    for (int& row : m_rows) {
        if (row >= first && row <= last)
            row += destination > last ? destination - last - 1 : destination - first;
        else if (row > last && row < destination)
            row -= length;
        else if (row >= destination && row < first)
            row += length;
    }
    if (seen)
        endMoveRows();
}

void ChatFilterModel::sourceDataChanged(int first, int last, const QList<int>& roles) {
    const bool renamed = roles.isEmpty() || roles.contains(roleOf("name"));
    QList<int> announced = roles;
    if (!roles.isEmpty()) {
        if (renamed)
            announced.append(FoundChat::MarksRole);
        if (roles.contains(roleOf("updatedAt")))
            announced.append(FoundChat::AgeRole);
    }
    for (int sourceRow = first; sourceRow <= last; ++sourceRow) {
        const int row = placeOf(sourceRow);
        const bool shown = row < count() && m_rows[static_cast<std::size_t>(row)] == sourceRow;
        if (renamed)
            m_keys[static_cast<std::size_t>(sourceRow)] = keyOf(sourceRow);
        if (shown && !accepts(sourceRow))
            removeAt(row, row);
        else if (!shown && accepts(sourceRow))
            insertAt(row, {sourceRow});
        else if (shown)
            emit dataChanged(index(row), index(row), announced);
    }
}

bool ChatFilterModel::accepts(int sourceRow) const {
    return containsWords(m_keys[static_cast<std::size_t>(sourceRow)], m_words);
}

QString ChatFilterModel::keyOf(int sourceRow) const {
    return searchKey(m_source->index(sourceRow, 0).data(roleOf("name")).toString());
}

void ChatFilterModel::insertAt(int row, const std::vector<int>& sourceRows) {
    beginInsertRows({}, row, row + static_cast<int>(sourceRows.size()) - 1);
    m_rows.insert(m_rows.begin() + row, sourceRows.begin(), sourceRows.end());
    endInsertRows();
    emit countChanged();
}

void ChatFilterModel::removeAt(int first, int last) {
    beginRemoveRows({}, first, last);
    m_rows.erase(m_rows.begin() + first, m_rows.begin() + last + 1);
    endRemoveRows();
    emit countChanged();
}

int ChatFilterModel::placeOf(int sourceRow) const {
    return static_cast<int>(std::lower_bound(m_rows.begin(), m_rows.end(), sourceRow) - m_rows.begin());
}

}
