#include "LocalService.h"

#include "WaitFor.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

#include <csignal>
#include <stdexcept>

namespace Korvi::Test {

using namespace Qt::Literals;

LocalService::~LocalService() {
    kill();
}

void LocalService::start(const QStringList& options) {
    m_process = std::make_unique<QProcess>();
    m_process->setProcessChannelMode(QProcess::MergedChannels);
    m_console.clear();
    // The same port again after a restart: the client knows only that one.
    m_process->start(QString::fromLatin1(KORVI_SERVICE),
        QStringList{u"--port"_s, QString::number(m_port), u"--data"_s, m_folder.path()} + options);
    static const QRegularExpression address(uR"(http://127\.0\.0\.1:(\d+)/api/v1)"_s);
    const bool isUp = waitFor([this] {
        readConsole();
        return address.match(m_console).hasMatch() || m_process->state() == QProcess::NotRunning;
    });
    const QRegularExpressionMatch match = address.match(m_console);
    if (!isUp || !match.hasMatch())
        throw std::runtime_error("the service did not start: " + m_console.toStdString());
    m_port = match.captured(1).toUShort();
}

void LocalService::freeze() {
    ::kill(static_cast<pid_t>(m_process->processId()), SIGSTOP);
}

void LocalService::kill() {
    if (!m_process)
        return;
    m_process->kill();
    m_process->waitForFinished();
    m_process.reset();
}

void LocalService::stop() {
    m_process->terminate();
    m_process->waitForFinished();
    m_process.reset();
}

QString LocalService::code() const {
    const_cast<LocalService*>(this)->readConsole();
    static const QRegularExpression line(u"Код входа для [^:]+: (\\S{4})"_s);
    QString newest;
    for (auto it = line.globalMatch(m_console); it.hasNext();)
        newest = it.next().captured(1);
    return newest;
}

void LocalService::forgetSessions() {
    execute(u"DELETE FROM sessions"_s);
}

void LocalService::addChats(int count) {
    execute(u"INSERT INTO chats(user_id, name, mode, created_at, updated_at) "
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < %1) "
            "SELECT (SELECT id FROM users), 'Беседа ' || i, 'aiplus', '2026-01-01T00:00:00.000Z', "
            "'2026-01-01T00:00:00.' || printf('%03d', i % 1000) || 'Z' FROM n"_s.arg(count));
}

void LocalService::execute(const QString& statement) {
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"change"_s);
        database.setDatabaseName(m_folder.filePath(u"korvi.db"_s));
        database.setConnectOptions(u"QSQLITE_BUSY_TIMEOUT=5000"_s);
        if (!database.open() || !QSqlQuery(database).exec(statement))
            throw std::runtime_error("the database could not be changed");
        database.close();
    }
    QSqlDatabase::removeDatabase(u"change"_s);
}

void LocalService::readConsole() {
    if (m_process)
        m_console += QString::fromUtf8(m_process->readAll());
}

std::vector<LocalService::Message> LocalService::messages() const {
    std::vector<Message> all;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"look"_s);
        database.setDatabaseName(m_folder.filePath(u"korvi.db"_s));
        database.setConnectOptions(u"QSQLITE_BUSY_TIMEOUT=5000"_s);
        if (!database.open())
            throw std::runtime_error("the database does not open");
        QSqlQuery query(database);
        query.exec(u"SELECT chats.name, role, content, messages.id FROM messages "
                   "JOIN chats ON chats.id = chat_id ORDER BY messages.id"_s);
        while (query.next()) {
            Message message{query.value(0).toString(), query.value(1).toString(), {}, {}};
            for (const QJsonValue& part : QJsonDocument::fromJson(query.value(2).toByteArray()).array()) {
                const QString type = part[u"type"].toString();
                (type == u"thinking"_s ? message.thinking : message.text) += part[u"text"].toString();
            }
            // An answer that is still under way stands in pieces.
            QSqlQuery pieces(database);
            pieces.prepare(u"SELECT kind, body FROM pieces WHERE message_id = ? ORDER BY seq"_s);
            pieces.addBindValue(query.value(3));
            pieces.exec();
            if (message.text.isEmpty() && message.thinking.isEmpty()) {
                while (pieces.next())
                    (pieces.value(0).toString() == u"thinking"_s ? message.thinking : message.text) +=
                        pieces.value(1).toString();
            }
            all.push_back(message);
        }
        database.close();
    }
    QSqlDatabase::removeDatabase(u"look"_s);
    return all;
}

}
