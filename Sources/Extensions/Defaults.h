#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

class QSqlDatabase;

namespace Korvi {

// The settings store: one SQLite file in WAL mode, each key a row, so that writing one value costs one row. The
// file and its folder are readable by the user alone. Never throws: a value that cannot be written (a full disk)
// is kept in memory, tried again at the next write, and `problem()` says in Russian what is wrong. A damaged file
// is moved aside, named in `problem()`, and an empty one begun.
class Defaults {
public:
    explicit Defaults(const QString& path);
    ~Defaults();
    Defaults(const Defaults&) = delete;
    Defaults& operator=(const Defaults&) = delete;

    std::optional<QByteArray> data(const QString& key) const;
    std::optional<QString> string(const QString& key) const;
    std::optional<bool> boolean(const QString& key) const;
    std::optional<qint64> integer(const QString& key) const;

    void setData(const QString& key, const QByteArray& value);
    void setString(const QString& key, const QString& value);
    void setBoolean(const QString& key, bool value);
    void setInteger(const QString& key, qint64 value);
    void remove(const QString& key);

    // Of all keys that begin with `prefix`.
    void removeAll(const QString& prefix);
    qint64 size(const QString& prefix) const; // bytes of their values

    // Empty when all is well: that values are not saved, as long as they are not, or that a file was moved aside.
    QString problem() const { return m_notSaved.isEmpty() ? m_movedAside : m_notSaved; }
    std::function<void()> onProblemChanged; // one listener; may be empty

private:
    enum class Opened { ready, damaged, unavailable };

    Opened open();
    void close();
    void moveAside();
    void notSaved(const QString& reason);
    QHash<QString, qint64> sizes(const QString& prefix) const;
    void write(const QString& key, std::optional<QByteArray> value);
    void save();
    bool writeRow(const QString& key, const std::optional<QByteArray>& value);

    QString m_path;
    QString m_connection;
    QString m_notSaved;
    QString m_movedAside;
    std::unique_ptr<QSqlDatabase> m_database;            // null unless it is ready
    QHash<QString, std::optional<QByteArray>> m_unsaved; // absent value: removed
};

}
