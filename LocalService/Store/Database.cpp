#include "Store/Database.h"

#include <algorithm>
#include <array>
#include <soci/sqlite3/soci-sqlite3.h>
#include <string>
#include <string_view>

namespace korvi::service {

namespace {

/// Each entry leads from the version that is its index to the next one. An entry is never changed once released.
constexpr std::array<std::string_view, Database::schemaVersion> migrations{
    R"(
    CREATE TABLE users(
        id TEXT PRIMARY KEY, email TEXT NOT NULL UNIQUE, created_at TEXT NOT NULL);
    CREATE TABLE codes(
        email TEXT PRIMARY KEY, code_hash TEXT NOT NULL, expires_at INTEGER NOT NULL, tries_left INTEGER NOT NULL);
    CREATE TABLE sessions(
        id TEXT PRIMARY KEY, user_id TEXT NOT NULL REFERENCES users(id) ON DELETE CASCADE,
        token_hash TEXT NOT NULL UNIQUE, created_at TEXT NOT NULL);
    CREATE INDEX sessions_of_user ON sessions(user_id);
    CREATE TABLE chats(
        id INTEGER PRIMARY KEY AUTOINCREMENT, user_id TEXT NOT NULL REFERENCES users(id) ON DELETE CASCADE,
        name TEXT NOT NULL, mode TEXT NOT NULL, created_at TEXT NOT NULL, updated_at TEXT NOT NULL, project_id INTEGER);
    CREATE INDEX chats_of_user ON chats(user_id, updated_at);
    CREATE TABLE messages(
        id INTEGER PRIMARY KEY AUTOINCREMENT, chat_id INTEGER NOT NULL REFERENCES chats(id) ON DELETE CASCADE,
        role TEXT NOT NULL, content TEXT NOT NULL, created_at TEXT NOT NULL);
    CREATE INDEX messages_of_chat ON messages(chat_id, id);
    CREATE TABLE answers(
        message_id INTEGER PRIMARY KEY REFERENCES messages(id) ON DELETE CASCADE,
        user_id TEXT NOT NULL, session_id TEXT NOT NULL, creates_chat INTEGER NOT NULL, state TEXT NOT NULL,
        error TEXT NOT NULL DEFAULT '', ended_at INTEGER NOT NULL DEFAULT 0, delivered INTEGER NOT NULL DEFAULT 0);
    CREATE INDEX answers_by_state ON answers(state);
    CREATE TABLE pieces(
        message_id INTEGER NOT NULL REFERENCES messages(id) ON DELETE CASCADE, seq INTEGER NOT NULL,
        kind TEXT NOT NULL, body TEXT NOT NULL, PRIMARY KEY(message_id, seq)) WITHOUT ROWID;
    )",
    R"(
    ALTER TABLE chats ADD COLUMN is_favorite INTEGER NOT NULL DEFAULT 0;
    ALTER TABLE answers ADD COLUMN create_confirmed INTEGER NOT NULL DEFAULT 0;
    ALTER TABLE answers ADD COLUMN pieces_confirmed INTEGER NOT NULL DEFAULT 0;
    )",
    R"(
    CREATE TABLE files(
        id TEXT PRIMARY KEY, user_id TEXT NOT NULL REFERENCES users(id) ON DELETE CASCADE,
        name TEXT NOT NULL, type TEXT NOT NULL, size INTEGER NOT NULL, created_at INTEGER NOT NULL);
    CREATE INDEX files_of_user ON files(user_id);
    CREATE TABLE file_uses(
        file_id TEXT NOT NULL REFERENCES files(id) ON DELETE CASCADE,
        chat_id INTEGER NOT NULL REFERENCES chats(id) ON DELETE CASCADE, PRIMARY KEY(file_id, chat_id)) WITHOUT ROWID;
    CREATE INDEX file_uses_of_chat ON file_uses(chat_id);
    CREATE TABLE artifacts(
        chat_id INTEGER NOT NULL REFERENCES chats(id) ON DELETE CASCADE, id TEXT NOT NULL, version INTEGER NOT NULL,
        title TEXT NOT NULL, kind TEXT NOT NULL, text TEXT NOT NULL, created_at TEXT NOT NULL,
        PRIMARY KEY(chat_id, id, version)) WITHOUT ROWID;
    )",
};

std::string connectString(const std::filesystem::path& file) {
    return "db=\"" + file.string() + "\" timeout=5";
}

/// SOCI prepares one statement at a time; a migration is a script of several. No statement here holds a semicolon.
void runScript(soci::session& sql, std::string_view script) {
    while (!script.empty()) {
        const auto statement = script.substr(0, script.find(';'));
        script.remove_prefix(std::min(script.size(), statement.size() + 1));
        if (statement.find_first_not_of(" \n") != std::string_view::npos)
            sql << std::string(statement);
    }
}

StoreError unusable(const std::filesystem::path& file, const std::string& why) {
    return StoreError("Не удаётся открыть базу данных " + file.string() + ": " + why +
        ". Файл не изменён. Верните его из резервной копии или переместите в другое место: тогда служба начнёт с "
        "пустой базы.");
}

}

Database::Database(const std::filesystem::path& file) {
    try {
        sql_.open(soci::sqlite3, connectString(file));
        std::string verdict;
        sql_ << "PRAGMA quick_check(1)", soci::into(verdict);
        if (verdict != "ok")
            throw unusable(file, "файл повреждён (" + verdict + ")");
        runScript(sql_, "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL; PRAGMA foreign_keys=ON;");
        migrate(file);
    } catch (const soci::soci_error& error) {
        throw unusable(file, error.what());
    }
}

void Database::migrate(const std::filesystem::path& file) {
    int version = 0;
    sql_ << "PRAGMA user_version", soci::into(version);
    if (version > schemaVersion)
        throw unusable(file,
            "она создана более новой версией программы (схема " + std::to_string(version) + ", эта версия знает " +
                std::to_string(schemaVersion) + ")");
    int tables = 0;
    sql_ << "SELECT count(*) FROM sqlite_master", soci::into(tables);
    if (version == 0 && tables > 0)
        throw unusable(file, "это файл другой программы");
    for (; version < schemaVersion; ++version) {
        soci::transaction transaction(sql_);
        runScript(sql_, migrations.at(static_cast<std::size_t>(version)));
        runScript(sql_, "PRAGMA user_version=" + std::to_string(version + 1));
        transaction.commit();
    }
}

void Database::rethrow(const soci::soci_error& error) {
    const std::string_view what = error.what();
    if (what.find("disk is full") != std::string_view::npos || what.find("I/O error") != std::string_view::npos)
        throw StoreError("Не удалось сохранить данные: на диске нет места или он недоступен. Освободите место и "
                         "повторите.");
    throw StoreError("Ошибка базы данных: " + std::string(what));
}

}
