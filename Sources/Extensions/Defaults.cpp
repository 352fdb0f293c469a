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

Defaults::Defaults(const QString& path)
    : m_path(path)
    , m_connection(u"defaults-"_s + QUuid::createUuid().toString(QUuid::WithoutBraces)) {
    if (open() == Opened::damaged) {
        moveAside();
        if (open() != Opened::ready)
            m_problem = u"Настройки не сохраняются: не удалось создать файл "_s + m_path;
    }
    if (!m_problem.isEmpty())
        qCWarning(lcPlatform).noquote() << "⚠️ [Defaults]" << m_problem;
}

Defaults::~Defaults() {
    if (m_database) {
        m_database->close();
        m_database.reset();
        QSqlDatabase::removeDatabase(m_connection);
    }
}

Defaults::Opened Defaults::open() {
    if (!makePrivateFile(m_path)) {
        m_problem = u"Настройки не сохраняются: нет доступа к файлу "_s + m_path;
        return Opened::unavailable;
    }
    m_database = std::make_unique<QSqlDatabase>(QSqlDatabase::addDatabase(u"QSQLITE"_s, m_connection));
    m_database->setDatabaseName(m_path);
    m_database->setConnectOptions(u"QSQLITE_BUSY_TIMEOUT=2000"_s);
    if (!m_database->open())
        return Opened::damaged;
    QSqlQuery query(*m_database);
    // NORMAL in WAL mode survives a kill of the process; only a power cut can take the last values.
    for (const auto* statement : {"PRAGMA journal_mode=WAL", "PRAGMA synchronous=NORMAL",
             "CREATE TABLE IF NOT EXISTS defaults(key TEXT PRIMARY KEY, value BLOB NOT NULL) WITHOUT ROWID",
             "SELECT key, value FROM defaults LIMIT 1"}) {
        if (!query.exec(QString::fromLatin1(statement)))
            return Opened::damaged;
    }
    return Opened::ready;
}

void Defaults::moveAside() {
    m_database->close();
    m_database.reset();
    QSqlDatabase::removeDatabase(m_connection);
    const QString aside = m_path + u".damaged-"_s + QDateTime::currentDateTimeUtc().toString(u"yyyyMMdd-hhmmss"_s);
    for (const QString& suffix : {QString(), u"-wal"_s, u"-shm"_s})
        QFile::rename(m_path + suffix, aside + suffix);
    m_problem = u"Файл настроек был повреждён. Он отложен: "_s + aside;
}

std::optional<QByteArray> Defaults::data(const QString& key) const {
    const auto unsaved = m_unsaved.constFind(key);
    if (unsaved != m_unsaved.constEnd())
        return *unsaved;
    if (!m_database || !m_database->isOpen())
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

void Defaults::write(const QString& key, std::optional<QByteArray> value) {
    m_unsaved.insert(key, std::move(value));
    // Values that an earlier write had to leave in memory go first: the disk may have room again.
    for (auto it = m_unsaved.begin(); it != m_unsaved.end();)
        it = writeRow(it.key(), it.value()) ? m_unsaved.erase(it) : std::next(it);
}

bool Defaults::writeRow(const QString& key, const std::optional<QByteArray>& value) {
    if (!m_database || !m_database->isOpen())
        return false;
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
    m_problem = u"Настройки не сохраняются: "_s + query.lastError().databaseText();
    qCWarning(lcPlatform).noquote() << "⚠️ [Defaults]" << m_problem;
    return false;
}

}
