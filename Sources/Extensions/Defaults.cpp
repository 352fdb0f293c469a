#include "Defaults.h"

#include "Linux/PrivateFiles.h"
#include "Log.h"

#include <QDateTime>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QUuid>

namespace Korvi {

using namespace Qt::Literals;

namespace {

// SQLite's own result codes, without the extension in the higher bits. Everything else (a full disk, another process
// that holds the file) passes, and is no reason to part with the file.
bool saysDamaged(const QSqlError& error) {
    constexpr int corrupt = 11;
    constexpr int notADatabase = 26;
    const int code = error.nativeErrorCode().toInt() & 0xff;
    return code == corrupt || code == notADatabase;
}

}

Defaults::Defaults(const QString& path)
    : m_path(path)
    , m_connection(u"defaults-"_s + QUuid::createUuid().toString(QUuid::WithoutBraces)) {
    if (open() == Opened::damaged) {
        moveAside();
        open();
    }
}

Defaults::~Defaults() {
    close();
}

Defaults::Opened Defaults::open() {
    if (!makePrivateFile(m_path)) {
        notSaved(u"нет доступа к файлу "_s + m_path);
        return Opened::unavailable;
    }
    m_database = std::make_unique<QSqlDatabase>(QSqlDatabase::addDatabase(u"QSQLITE"_s, m_connection));
    m_database->setDatabaseName(m_path);
    m_database->setConnectOptions(u"QSQLITE_BUSY_TIMEOUT=2000"_s);
    QSqlError error;
    if (!m_database->open()) {
        error = m_database->lastError();
    } else {
        QSqlQuery query(*m_database);
        // NORMAL in WAL mode survives a kill of the process; only a power cut can take the last values.
        for (const auto* statement : {"PRAGMA journal_mode=WAL", "PRAGMA synchronous=NORMAL",
                 "CREATE TABLE IF NOT EXISTS defaults(key TEXT PRIMARY KEY, value BLOB NOT NULL) WITHOUT ROWID",
                 "SELECT key, value FROM defaults LIMIT 1"}) {
            if (!query.exec(QString::fromLatin1(statement))) {
                error = query.lastError();
                break;
            }
        }
    }
    if (!error.isValid())
        return Opened::ready;
    close();
    notSaved(error.databaseText());
    return saysDamaged(error) ? Opened::damaged : Opened::unavailable;
}

void Defaults::close() {
    if (!m_database)
        return;
    m_database->close();
    m_database.reset();
    QSqlDatabase::removeDatabase(m_connection);
}

void Defaults::moveAside() {
    const QString aside = m_path + u".damaged-"_s + QDateTime::currentDateTimeUtc().toString(u"yyyyMMdd-hhmmss"_s);
    for (const QString& suffix : {QString(), u"-wal"_s, u"-shm"_s})
        QFile::rename(m_path + suffix, aside + suffix);
    m_notSaved.clear();
    m_movedAside = u"Файл настроек был повреждён. Он отложен: "_s + aside;
    qCWarning(lcPlatform).noquote() << "⚠️ [Defaults]" << m_movedAside;
}

void Defaults::notSaved(const QString& reason) {
    const QString problem = u"Настройки не сохраняются: "_s + reason;
    if (std::exchange(m_notSaved, problem) != problem)
        qCWarning(lcPlatform).noquote() << "⚠️ [Defaults]" << problem;
}

std::optional<QByteArray> Defaults::data(const QString& key) const {
    const auto unsaved = m_unsaved.constFind(key);
    if (unsaved != m_unsaved.constEnd())
        return *unsaved;
    if (!m_database)
        return std::nullopt;
    QSqlQuery query(*m_database);
    query.prepare(u"SELECT value FROM defaults WHERE key = ?"_s);
    query.addBindValue(key);
    if (!query.exec() || !query.next())
        return std::nullopt;
    return query.value(0).toByteArray();
}

std::optional<QString> Defaults::string(const QString& key) const {
    const auto value = data(key);
    return value ? std::optional(QString::fromUtf8(*value)) : std::nullopt;
}

std::optional<bool> Defaults::boolean(const QString& key) const {
    const auto value = data(key);
    return value ? std::optional(*value == "true") : std::nullopt;
}

std::optional<qint64> Defaults::integer(const QString& key) const {
    const auto value = data(key);
    bool ok = false;
    const qint64 number = value ? value->toLongLong(&ok) : 0;
    return ok ? std::optional(number) : std::nullopt;
}

void Defaults::setData(const QString& key, const QByteArray& value) {
    write(key, value);
}

void Defaults::setString(const QString& key, const QString& value) {
    write(key, value.toUtf8());
}

void Defaults::setBoolean(const QString& key, bool value) {
    write(key, QByteArray(value ? "true" : "false"));
}

void Defaults::setInteger(const QString& key, qint64 value) {
    write(key, QByteArray::number(value));
}

void Defaults::remove(const QString& key) {
    write(key, std::nullopt);
}

void Defaults::removeAll(const QString& prefix) {
    for (const QString& key : sizes(prefix).keys())
        remove(key);
}

qint64 Defaults::size(const QString& prefix) const {
    qint64 sum = 0;
    for (const qint64 size : sizes(prefix))
        sum += size;
    return sum;
}

QHash<QString, qint64> Defaults::sizes(const QString& prefix) const {
    QHash<QString, qint64> sizes;
    if (m_database) {
        QSqlQuery query(*m_database);
        query.setForwardOnly(true);
        query.prepare(u"SELECT key, length(value) FROM defaults WHERE substr(key, 1, ?) = ?"_s);
        query.addBindValue(prefix.size());
        query.addBindValue(prefix);
        query.exec();
        while (query.next())
            sizes.insert(query.value(0).toString(), query.value(1).toLongLong());
    }
    for (auto it = m_unsaved.begin(); it != m_unsaved.end(); ++it) {
        if (!it.key().startsWith(prefix))
            continue;
        if (it.value())
            sizes.insert(it.key(), it.value()->size());
        else
            sizes.remove(it.key());
    }
    return sizes;
}

void Defaults::write(const QString& key, std::optional<QByteArray> value) {
    const QString before = problem();
    m_unsaved.insert(key, std::move(value));
    save();
    if (onProblemChanged && problem() != before)
        onProblemChanged();
}

void Defaults::save() {
    if (!m_database && open() != Opened::ready)
        return;
    // Values that an earlier write had to leave in memory go first: the disk may have room again.
    for (auto it = m_unsaved.begin(); it != m_unsaved.end();)
        it = writeRow(it.key(), it.value()) ? m_unsaved.erase(it) : std::next(it);
    if (m_unsaved.isEmpty())
        m_notSaved.clear();
}

bool Defaults::writeRow(const QString& key, const std::optional<QByteArray>& value) {
    QSqlQuery query(*m_database);
    if (value) {
        query.prepare(u"INSERT INTO defaults(key, value) VALUES(?, ?) "
                      "ON CONFLICT(key) DO UPDATE SET value = excluded.value"_s);
        query.addBindValue(key);
        // A null QByteArray would be stored as NULL; an empty value is a value.
        query.addBindValue(value->isNull() ? QByteArray("") : *value);
    } else {
        query.prepare(u"DELETE FROM defaults WHERE key = ?"_s);
        query.addBindValue(key);
    }
    if (query.exec())
        return true;
    notSaved(query.lastError().databaseText());
    return false;
}

}
