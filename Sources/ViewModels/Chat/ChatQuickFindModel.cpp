#include "Chat/ChatQuickFindModel.h"
#include "Chat/ChatDate.h"
#include "Chat/FoundChat.h"
#include "Chat/FuzzyMatch.h"
#include "Chat/SearchText.h"

#include <algorithm>

namespace Korvi {

ChatQuickFindModel::ChatQuickFindModel(QObject* parent)
    : QAbstractListModel(parent) {
    connect(this, &ChatQuickFindModel::activeChatIdChanged, this, &ChatQuickFindModel::find);
}

void ChatQuickFindModel::setSource(QAbstractItemModel* source) {
    if (source == m_source)
        return;
    if (m_source)
        m_source->disconnect(this);
    m_source = source;
    if (source) {
        using Model = QAbstractItemModel;
        for (const auto change : {&Model::rowsInserted, &Model::rowsRemoved})
            connect(source, change, this, &ChatQuickFindModel::read);
        connect(source, &Model::rowsMoved, this, &ChatQuickFindModel::read);
        connect(source, &Model::dataChanged, this, &ChatQuickFindModel::read);
        connect(source, &Model::modelReset, this, &ChatQuickFindModel::read);
    }
    read();
    emit sourceChanged();
}

void ChatQuickFindModel::setQuery(const QString& query) {
    if (query == m_query)
        return;
    m_query = query;
    find();
    emit queryChanged();
}

int ChatQuickFindModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant ChatQuickFindModel::data(const QModelIndex& index, int role) const {
    if (!m_source || !index.isValid() || index.row() >= count())
        return {};
    const Hit& hit = m_hits[static_cast<std::size_t>(index.row())];
    const QModelIndex origin = m_source->index(hit.sourceRow, 0);
    if (role == FoundChat::AgeRole)
        return formatChatDate(origin.data(m_roles.value("updatedAt", -1)).toString(), QDateTime::currentDateTimeUtc());
    if (role != FoundChat::MarksRole)
        return origin.data(role);
    const QString name = origin.data(m_roles.value("name", -1)).toString();
    std::vector<qsizetype> sources;
    searchKey(name, &sources);
    return FoundChat::marks(toRanges(hit.positions, sources, name.size()));
}

QHash<int, QByteArray> ChatQuickFindModel::roleNames() const {
    return FoundChat::roleNames(m_source);
}

qint64 ChatQuickFindModel::chatIdAt(int row) const {
    if (!m_source || row < 0 || row >= count())
        return -1;
    const int sourceRow = m_hits[static_cast<std::size_t>(row)].sourceRow;
    return m_source->index(sourceRow, 0).data(m_roles.value("chatId", -1)).toLongLong();
}

void ChatQuickFindModel::read() {
    m_roles.clear();
    m_candidates.clear();
    if (m_source) {
        m_roles = FoundChat::rolesOf(*m_source);
        for (int row = 0; row < m_source->rowCount(); ++row) {
            const QModelIndex index = m_source->index(row, 0);
            m_candidates.push_back({row, index.data(m_roles.value("chatId", -1)).toLongLong(),
                searchKey(index.data(m_roles.value("name", -1)).toString()),
                index.data(m_roles.value("updatedAt", -1)).toString()});
        }
    }
    std::stable_sort(m_candidates.begin(), m_candidates.end(),
        [](const Candidate& a, const Candidate& b) { return a.updatedAt > b.updatedAt; });
    find();
}

void ChatQuickFindModel::find() {
    std::vector<Hit> hits;
    const QStringList words = searchWords(m_query);
    for (const Candidate& candidate : m_candidates) {
        if (words.isEmpty() && candidate.chatId == m_activeChatId)
            continue;
        if (auto match = fuzzyMatch(words, candidate.key))
            hits.push_back({candidate.sourceRow, match->score, std::move(match->positions)});
        if (words.isEmpty() && hits.size() == limit)
            break;
    }
    // Of equals the more recent stays in front.
    std::stable_sort(hits.begin(), hits.end(), [](const Hit& a, const Hit& b) { return a.score > b.score; });
    if (hits.size() > limit)
        hits.resize(limit);
    beginResetModel();
    m_hits = std::move(hits);
    endResetModel();
    emit countChanged();
}

}
