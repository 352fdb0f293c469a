#pragma once

#include <QAbstractListModel>
#include <QDateTime>
#include <QPointer>
#include <QtQml/qqmlregistration.h>

#include <vector>

namespace Korvi {

// The chats that fit a query best, from a list of chats with the roles "chatId", "name" and "updatedAt"; without a
// query the most recent ones but the open one. Roles: the source's, and those of FoundChat.
class ChatQuickFindModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QAbstractItemModel* source READ source WRITE setSource NOTIFY sourceChanged)
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY queryChanged)
    Q_PROPERTY(qint64 activeChatId MEMBER m_activeChatId NOTIFY activeChatIdChanged)
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    static constexpr int limit = 50; // rows at the most

    explicit ChatQuickFindModel(QObject* parent = nullptr);

    QAbstractItemModel* source() const { return m_source; }
    void setSource(QAbstractItemModel* source);
    QString query() const { return m_query; }
    void setQuery(const QString& query);
    int count() const { return static_cast<int>(m_hits.size()); }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    Q_INVOKABLE qint64 chatIdAt(int row) const; // -1 outside

signals:
    void sourceChanged();
    void queryChanged();
    void activeChatIdChanged();
    void countChanged();

private:
    struct Candidate {
        int sourceRow = 0;
        qint64 chatId = 0;
        QString key;
        QString updatedAt;
    };
    struct Hit {
        int sourceRow = 0;
        int score = 0;
        std::vector<qsizetype> positions; // in the key
    };

    void read();
    void find();

    QPointer<QAbstractItemModel> m_source;
    QHash<QByteArray, int> m_roles; // of the source
    QString m_query;
    qint64 m_activeChatId = -1;
    std::vector<Candidate> m_candidates; // the most recent first
    std::vector<Hit> m_hits;
};

}
