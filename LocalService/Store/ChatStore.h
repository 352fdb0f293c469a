#pragma once

#include "Chat/Answer.h"
#include "Store/Database.h"

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace korvi::service {

struct ChatRow {
    long long id = 0;
    std::string userId;
    std::string name;
    std::string mode;
    std::string createdAt;
    std::string updatedAt;
    bool isFavorite = false;
    std::optional<long long> projectId;

    nlohmann::json toJson() const;
};

struct MessageRow {
    long long id = 0;
    long long chatId = 0;
    std::string role;
    nlohmann::json content;
    std::string createdAt;

    nlohmann::json toJson() const;
};

struct ArtifactRow {
    std::string id;
    int version = 0;
    std::string title;
    std::string kind;
    std::string text;
};

/// Chats, their messages and the answers that are being written. Every query names the user whose rows it means.
class ChatStore {
public:
    explicit ChatStore(Database& database)
        : db_(database) {}

    std::vector<ChatRow> chats(const std::string& userId);
    std::optional<ChatRow> chat(const std::string& userId, long long chatId);
    std::optional<ChatRow> rename(const std::string& userId, long long chatId, const std::string& name);
    std::optional<ChatRow> setFavorite(const std::string& userId, long long chatId, bool isFavorite);
    bool removeChat(const std::string& userId, long long chatId);

    /// What stands in the chat. An answer that is still running, and the question that began a chat, count for the
    /// session that waits for them only when the answer has ended; other sessions see them as far as they have come.
    std::vector<MessageRow> messages(const std::string& userId, long long chatId, const std::string& sessionId);
    /// The conversation so far for a model: ended answers and all questions.
    std::vector<MessageRow> history(long long chatId);

    /// Stores a new chat and the first question in it, as beginAnswer() does; sets `answer.chatId` as well. Both or nothing.
    ChatRow beginChat(const ChatRow& draft, Answer& answer, const nlohmann::json& question);
    /// Stores the question and an empty answer to it, and sets `answer.messageId`.
    void beginAnswer(Answer& answer, const nlohmann::json& question);
    /// Stores the pieces that are not stored yet, of all these answers at once.
    void storePieces(const std::vector<Answer*>& answers);
    /// Stores the rest, the final state and the message made of the pieces.
    void endAnswer(Answer& answer);
    void storeConfirmation(const Answer& answer);
    /// The final frame has arrived or is out of date: the pieces are no longer needed.
    void forgetPieces(const Answer& answer);

    /// Stores the artifact as the next version of its id in the chat and returns its number.
    int addArtifact(long long chatId, const ArtifactRow& artifact);
    int nextArtifactVersion(long long chatId, const std::string& id);
    std::optional<ArtifactRow> artifact(
        const std::string& userId, long long chatId, const std::string& id, int version);

    /// Closes what a crash has left running: its pieces become its message.
    void closeInterrupted(const std::string& error);
    /// Ended answers that were not delivered, oldest first. Those that ended before `since` are marked delivered.
    std::vector<Answer> undelivered(long long since);

private:
    std::vector<Piece> pieces(soci::session& sql, long long messageId);

    Database& db_;
};

}
