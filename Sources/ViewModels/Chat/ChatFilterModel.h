#pragma once

#include <QAbstractListModel>
#include <QDateTime>
#include <QPointer>
#include <QtQml/qqmlregistration.h>

#include <vector>

namespace Korvi {

// The rows of a list of chats whose names contain every word of a query, in the order of that list. A new query adds
// and removes the rows that differ and no others, except far down a long list, where nobody looks and one step is
// cheaper than hundreds; rows that the source moves, move. Roles: the source's, and those of FoundChat.
class ChatFilterModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    // Needs the roles "chatId", "name" and "updatedAt".
    Q_PROPERTY(QAbstractItemModel* source READ source WRITE setSource NOTIFY sourceChanged)
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY queryChanged)
    Q_PROPERTY(QDateTime now READ now WRITE setNow NOTIFY nowChanged) // what ages count from
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    static constexpr int stepLimit = 64; // runs of rows that a new query adds or removes one by one

    using QAbstractListModel::QAbstractListModel;

    QAbstractItemModel* source() const { return m_source; }
    void setSource(QAbstractItemModel* source);
    QString query() const { return m_query; }
    void setQuery(const QString& query);
    QDateTime now() const { return m_now; }
    void setNow(const QDateTime& now);
    int count() const { return static_cast<int>(m_rows.size()); }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    Q_INVOKABLE int rowOf(qint64 chatId) const; // -1 when it is not among them
    Q_INVOKABLE qint64 chatIdAt(int row) const; // -1 outside
    Q_INVOKABLE QString nameAt(int row) const;
    Q_INVOKABLE bool isFavoriteAt(int row) const;

signals:
    void sourceChanged();
    void queryChanged();
    void nowChanged();
    void countChanged();

private:
    void becomeAccepted();
    void rebuild();
    void sourceInserted(int first, int last);
    void sourceGoing(int first, int last);
    void sourceGone(int first, int last);
    void sourceMoved(int first, int last, int destination);
    void sourceDataChanged(int first, int last, const QList<int>& roles);
    bool accepts(int sourceRow) const;
    QString keyOf(int sourceRow) const;
    void insertAt(int row, const std::vector<int>& sourceRows);
    void removeAt(int first, int last);
    int placeOf(int sourceRow) const; // first row of ours that is not before it
    int roleOf(const char* name) const { return m_roles.value(name, -1); }
    QVariant valueAt(int row, const char* role) const;

    QPointer<QAbstractItemModel> m_source;
    QHash<QByteArray, int> m_roles; // of the source
    QString m_query;
    QStringList m_words;
    QDateTime m_now = QDateTime::currentDateTimeUtc();
    std::vector<QString> m_keys; // a search key for each row of the source
    std::vector<int> m_rows;     // rows of the source that are shown, ascending
};

}
