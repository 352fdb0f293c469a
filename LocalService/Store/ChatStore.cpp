#include "Store/ChatStore.h"

#include "Chat/AnswerContent.h"
#include "Core/Json.h"
#include "Core/Limits.h"
#include "Core/Time.h"

namespace korvi::service {

using nlohmann::json;
using soci::into;
using soci::use;

namespace {

/// Runs a query over chats; `condition` follows WHERE and names its parameters :u (user) and, if `chatId` is not 0, :c.
std::vector<ChatRow> selectChats(
    soci::session& sql, const std::string& condition, const std::string& userId, const long long& chatId) {
    ChatRow row;
    int favorite = 0;
    long long project = 0;
    soci::indicator projectIndicator = soci::i_null;
    soci::statement query(sql);
    query.exchange(into(row.id));
    query.exchange(into(row.userId));
    query.exchange(into(row.name));
    query.exchange(into(row.mode));
    query.exchange(into(row.createdAt));
    query.exchange(into(row.updatedAt));
    query.exchange(into(favorite));
    query.exchange(into(project, projectIndicator));
    query.exchange(use(userId, "u"));
    if (chatId != 0)
        query.exchange(use(chatId, "c"));
    query.alloc();
    query.prepare("SELECT id, user_id, name, mode, created_at, updated_at, is_favorite, project_id FROM chats WHERE " +
        condition);
    query.define_and_bind();
    query.execute();
    std::vector<ChatRow> rows;
    while (query.fetch()) {
        row.isFavorite = favorite != 0;
        row.projectId = projectIndicator == soci::i_ok ? std::optional(project) : std::nullopt;
        rows.push_back(row);
    }
    return rows;
}

/// Runs a query for id, role, content and created_at of messages. It names the chat :c and, where they are given, the
/// user :u and the session :s.
std::vector<MessageRow> selectMessages(soci::session& sql, const char* text, long long chatId,
    const std::string* userId = nullptr, const std::string* sessionId = nullptr) {
    MessageRow row;
    row.chatId = chatId;
    std::string content;
    soci::statement statement(sql);
    statement.exchange(into(row.id));
    statement.exchange(into(row.role));
    statement.exchange(into(content));
    statement.exchange(into(row.createdAt));
    statement.exchange(use(chatId, "c"));
    if (userId)
        statement.exchange(use(*userId, "u"));
    if (sessionId)
        statement.exchange(use(*sessionId, "s"));
    statement.alloc();
    statement.prepare(text);
    statement.define_and_bind();
    statement.execute();
    std::vector<MessageRow> rows;
    while (statement.fetch()) {
        row.content = json::parse(content, nullptr, false);
        if (!row.content.is_array())
            row.content = json::array();
        rows.push_back(row);
    }
    return rows;
}

}

json ChatRow::toJson() const {
    json result{{"id", id}, {"name", name}, {"mode", mode}, {"createdAt", createdAt}, {"updatedAt", updatedAt},
        {"userId", userId}, {"isFavorite", isFavorite}};
    if (projectId)
        result["projectId"] = *projectId;
    return result;
}

json MessageRow::toJson() const {
    return {{"id", id}, {"createdAt", createdAt}, {"chatId", chatId}, {"role", role}, {"content", content},
        {"usageTokens", 0}};
}

std::vector<ChatRow> ChatStore::chats(const std::string& userId) {
    return db_.run([&](soci::session& sql) {
        return selectChats(sql, "user_id = :u ORDER BY is_favorite DESC, updated_at DESC, id DESC", userId, 0);
    });
}

std::optional<ChatRow> ChatStore::chat(const std::string& userId, long long chatId) {
    return db_.run([&](soci::session& sql) -> std::optional<ChatRow> {
        auto rows = chatId > 0 ? selectChats(sql, "user_id = :u AND id = :c", userId, chatId) : std::vector<ChatRow>{};
        return rows.empty() ? std::nullopt : std::optional(std::move(rows.front()));
    });
}

std::optional<ChatRow> ChatStore::rename(const std::string& userId, long long chatId, const std::string& name) {
    db_.run([&](soci::session& sql) {
        sql << "UPDATE chats SET name = :n WHERE user_id = :u AND id = :c", use(name), use(userId), use(chatId);
    });
    return chat(userId, chatId);
}

std::optional<ChatRow> ChatStore::setFavorite(const std::string& userId, long long chatId, bool isFavorite) {
    const int value = isFavorite ? 1 : 0;
    db_.run([&](soci::session& sql) {
        sql << "UPDATE chats SET is_favorite = :f WHERE user_id = :u AND id = :c", use(value), use(userId), use(chatId);
    });
    return chat(userId, chatId);
}

bool ChatStore::removeChat(const std::string& userId, long long chatId) {
    if (!chat(userId, chatId))
        return false;
    db_.run([&](soci::session& sql) {
        sql << "DELETE FROM chats WHERE user_id = :u AND id = :c", use(userId), use(chatId);
    });
    return true;
}

std::vector<MessageRow> ChatStore::messages(const std::string& userId, long long chatId, const std::string& sessionId) {
    return db_.run([&](soci::session& sql) {
        const soci::transaction oneView(sql);
        auto rows = selectMessages(sql,
            "SELECT m.id, m.role, m.content, m.created_at FROM messages m JOIN chats c ON c.id = m.chat_id "
            "WHERE m.chat_id = :c AND c.user_id = :u AND NOT EXISTS(SELECT 1 FROM answers a "
            "  WHERE a.state = 'running' AND a.session_id = :s AND (a.message_id = m.id OR (a.creates_chat = 1 "
            "    AND a.message_id IN (SELECT id FROM messages WHERE chat_id = m.chat_id) AND m.id < a.message_id))) "
            "ORDER BY m.id",
            chatId, &userId, &sessionId);
        for (auto& row : rows)
            if (row.content.empty() && row.role == "ai")
                row.content = contentOf(pieces(sql, row.id), AnswerState::running);
        return rows;
    });
}

std::vector<MessageRow> ChatStore::history(long long chatId) {
    return db_.run([&](soci::session& sql) {
        return selectMessages(sql,
            "SELECT m.id, m.role, m.content, m.created_at FROM messages m LEFT JOIN answers a ON a.message_id = m.id "
            "WHERE m.chat_id = :c AND (a.state IS NULL OR a.state <> 'running') ORDER BY m.id",
            chatId);
    });
}

namespace {

void insertChat(soci::session& sql, ChatRow& row) {
    row.createdAt = row.updatedAt = toIso8601(WallClock::now());
    long long project = row.projectId.value_or(0);
    soci::indicator projectIndicator = row.projectId ? soci::i_ok : soci::i_null;
    sql << "INSERT INTO chats(user_id, name, mode, created_at, updated_at, project_id) VALUES(:u, :n, :m, :a, :b, :p)",
        use(row.userId), use(row.name), use(row.mode), use(row.createdAt), use(row.updatedAt),
        use(project, projectIndicator);
    sql.get_last_insert_id("chats", row.id);
}

void insertTurn(soci::session& sql, Answer& answer, const json& question) {
    const std::string now = toIso8601(WallClock::now());
    const std::string content = dumpJson(question);
    sql << "INSERT INTO messages(chat_id, role, content, created_at) VALUES(:c, 'user', :b, :t)", use(answer.chatId),
        use(content), use(now);
    sql << "INSERT INTO messages(chat_id, role, content, created_at) VALUES(:c, 'ai', '[]', :t)", use(answer.chatId),
        use(now);
    sql.get_last_insert_id("messages", answer.messageId);
    const int creates = answer.createsChat ? 1 : 0;
    sql << "INSERT INTO answers(message_id, user_id, session_id, creates_chat, state) VALUES(:m, :u, :s, :c, "
           "'running')",
        use(answer.messageId), use(answer.userId), use(answer.sessionId), use(creates);
    sql << "UPDATE chats SET updated_at = :t WHERE id = :c", use(now), use(answer.chatId);
}

}

ChatRow ChatStore::beginChat(const ChatRow& draft, Answer& answer, const json& question) {
    return db_.transact([&](soci::session& sql) {
        ChatRow row = draft;
        insertChat(sql, row);
        answer.chatId = row.id;
        insertTurn(sql, answer, question);
        return row;
    });
}

void ChatStore::beginAnswer(Answer& answer, const json& question) {
    db_.transact([&](soci::session& sql) { insertTurn(sql, answer, question); });
}

namespace {

void insertPieces(soci::session& sql, Answer& answer) {
    if (answer.stored == answer.pieces.size())
        return;
    long long seq = 0;
    std::string kind;
    std::string body;
    soci::statement insert = (sql.prepare << "INSERT INTO pieces(message_id, seq, kind, body) VALUES(:m, :s, :k, :b)",
        use(answer.messageId), use(seq), use(kind), use(body));
    for (std::size_t i = answer.stored; i < answer.pieces.size(); ++i) {
        // The statement reads it through its binding, which the analyzer cannot see.
        seq = static_cast<long long>(i); // NOLINT(clang-analyzer-deadcode.DeadStores)
        kind = nameOf(answer.pieces[i].kind);
        body = answer.pieces[i].body;
        insert.execute(true);
    }
}

/// Artifacts that an interruption has left unfinished: they are shown, so they can be asked for.
void insertArtifacts(soci::session& sql, long long chatId, const json& blocks) {
    const std::string now = toIso8601(WallClock::now());
    for (const json& block : blocks) {
        if (block["type"] != "artifact")
            continue;
        const auto id = block["id"].get<std::string>();
        const auto title = block["title"].get<std::string>();
        const auto kind = block["kind"].get<std::string>();
        const auto text = block["text"].get<std::string>();
        const int version = block.value("version", 1);
        sql << "INSERT OR IGNORE INTO artifacts(chat_id, id, version, title, kind, text, created_at) "
               "VALUES(:c, :i, :v, :t, :k, :x, :n)",
            use(chatId), use(id), use(version), use(title), use(kind), use(text), use(now);
    }
}

}

void ChatStore::storePieces(const std::vector<Answer*>& answers) {
    db_.transact([&](soci::session& sql) {
        for (Answer* answer : answers)
            insertPieces(sql, *answer);
    });
    // Only what is committed may be sent.
    for (Answer* answer : answers)
        answer->stored = answer->pieces.size();
}

void ChatStore::endAnswer(Answer& answer) {
    db_.transact([&](soci::session& sql) {
        insertPieces(sql, answer);
        const json blocks = contentOf(answer.pieces, answer.state);
        insertArtifacts(sql, answer.chatId, blocks);
        const std::string content = dumpJson(blocks);
        const std::string state(nameOf(answer.state));
        const std::string now = toIso8601(WallClock::now());
        sql << "UPDATE messages SET content = :b WHERE id = :m", use(content), use(answer.messageId);
        sql << "UPDATE answers SET state = :s, error = :e, ended_at = :t WHERE message_id = :m", use(state),
            use(answer.error), use(answer.endedAt), use(answer.messageId);
        sql << "UPDATE chats SET updated_at = :t WHERE id = :c", use(now), use(answer.chatId);
    });
    answer.stored = answer.pieces.size();
}

void ChatStore::storeConfirmation(const Answer& answer) {
    db_.run([&](soci::session& sql) {
        const int create = answer.createConfirmed ? 1 : 0;
        const auto pieces = static_cast<long long>(answer.piecesConfirmed);
        sql << "UPDATE answers SET create_confirmed = :c, pieces_confirmed = :p WHERE message_id = :m", use(create),
            use(pieces), use(answer.messageId);
    });
}

void ChatStore::forgetPieces(const Answer& answer) {
    db_.transact([&](soci::session& sql) {
        sql << "UPDATE answers SET delivered = 1 WHERE message_id = :m", use(answer.messageId);
        sql << "DELETE FROM pieces WHERE message_id = :m", use(answer.messageId);
    });
}

void ChatStore::closeInterrupted(const std::string& error) {
    // Their sessions could not come back while the service was down: the time to do so begins now. After a longer pause
    // nobody waits any more.
    const long long now = toMillis(WallClock::now());
    const long long oldest = now - std::chrono::milliseconds(limits::restartPause).count();
    db_.run([&](soci::session& sql) {
        sql << "UPDATE answers SET ended_at = :n WHERE state = 'interrupted' AND delivered = 0 AND ended_at > :o",
            use(now), use(oldest);
    });
    std::vector<Answer> answers;
    db_.run([&](soci::session& sql) {
        Answer answer;
        soci::statement query = (sql.prepare << "SELECT a.message_id, m.chat_id FROM answers a "
                                                "JOIN messages m ON m.id = a.message_id WHERE a.state = 'running'",
            into(answer.messageId), into(answer.chatId));
        query.execute();
        while (query.fetch())
            answers.push_back(answer);
        for (auto& each : answers)
            each.pieces = pieces(sql, each.messageId);
    });
    for (auto& answer : answers) {
        answer.stored = answer.pieces.size();
        answer.state = AnswerState::interrupted;
        answer.error = error;
        answer.endedAt = toMillis(WallClock::now());
        endAnswer(answer);
    }
}

std::vector<Answer> ChatStore::undelivered(long long since) {
    return db_.transact([&](soci::session& sql) {
        sql << "DELETE FROM pieces WHERE message_id IN (SELECT message_id FROM answers WHERE delivered = 0 "
               "AND state <> 'running' AND ended_at < :t)",
            use(since);
        sql << "UPDATE answers SET delivered = 1 WHERE delivered = 0 AND state <> 'running' AND ended_at < :t",
            use(since);

        std::vector<Answer> answers;
        Answer row;
        std::string state;
        int creates = 0;
        int createConfirmed = 0;
        long long piecesConfirmed = 0;
        soci::statement query = (sql.prepare
                << "SELECT a.message_id, m.chat_id, a.user_id, a.session_id, a.creates_chat, a.state, a.error, "
                   "a.ended_at, a.create_confirmed, a.pieces_confirmed FROM answers a "
                   "JOIN messages m ON m.id = a.message_id "
                   "WHERE a.delivered = 0 AND a.state <> 'running' ORDER BY a.message_id",
            into(row.messageId), into(row.chatId), into(row.userId), into(row.sessionId), into(creates), into(state),
            into(row.error), into(row.endedAt), into(createConfirmed), into(piecesConfirmed));
        query.execute();
        while (query.fetch()) {
            row.createsChat = creates != 0;
            row.createConfirmed = createConfirmed != 0;
            row.piecesConfirmed = static_cast<std::size_t>(piecesConfirmed);
            for (const AnswerState each :
                {AnswerState::done, AnswerState::aborted, AnswerState::failed, AnswerState::interrupted})
                if (state == nameOf(each))
                    row.state = each;
            answers.push_back(row);
        }
        for (auto& answer : answers) {
            answer.pieces = pieces(sql, answer.messageId);
            answer.stored = answer.pieces.size();
        }
        return answers;
    });
}

std::vector<Piece> ChatStore::pieces(soci::session& sql, long long messageId) {
    std::vector<Piece> result;
    std::string kind;
    std::string body;
    soci::statement query = (sql.prepare << "SELECT kind, body FROM pieces WHERE message_id = :m ORDER BY seq",
        into(kind), into(body), use(messageId));
    query.execute();
    while (query.fetch())
        result.push_back({pieceKindOf(kind), body});
    return result;
}

int ChatStore::nextArtifactVersion(long long chatId, const std::string& id) {
    return db_.run([&](soci::session& sql) {
        int latest = 0;
        sql << "SELECT coalesce(max(version), 0) FROM artifacts WHERE chat_id = :c AND id = :i", into(latest),
            use(chatId), use(id);
        return latest + 1;
    });
}

int ChatStore::addArtifact(long long chatId, const ArtifactRow& artifact) {
    const int version = nextArtifactVersion(chatId, artifact.id);
    const std::string now = toIso8601(WallClock::now());
    db_.run([&](soci::session& sql) {
        sql << "INSERT INTO artifacts(chat_id, id, version, title, kind, text, created_at) "
               "VALUES(:c, :i, :v, :t, :k, :x, :n)",
            use(chatId), use(artifact.id), use(version), use(artifact.title), use(artifact.kind), use(artifact.text),
            use(now);
    });
    return version;
}

std::optional<ArtifactRow> ChatStore::artifact(
    const std::string& userId, long long chatId, const std::string& id, int version) {
    return db_.run([&](soci::session& sql) -> std::optional<ArtifactRow> {
        ArtifactRow row;
        sql << "SELECT a.id, a.version, a.title, a.kind, a.text FROM artifacts a JOIN chats c ON c.id = a.chat_id "
               "WHERE c.user_id = :u AND a.chat_id = :c AND a.id = :i AND a.version = :v",
            into(row.id), into(row.version), into(row.title), into(row.kind), into(row.text), use(userId), use(chatId),
            use(id), use(version);
        return sql.got_data() ? std::optional(row) : std::nullopt;
    });
}

}
