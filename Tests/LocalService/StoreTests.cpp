#include "Core/Time.h"
#include "Store/AccountStore.h"
#include "Store/ChatStore.h"
#include "Support/ServiceProcess.h"

#include <fstream>
#include <gmock/gmock.h>
#include <sqlite3.h>

namespace korvi::service {
namespace {

using nlohmann::json;
using testing::HasSubstr;

void execute(const std::filesystem::path& file, const char* script) {
    sqlite3* handle = nullptr;
    ASSERT_EQ(sqlite3_open(file.c_str(), &handle), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(handle, script, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(handle);
    sqlite3_close(handle);
}

std::string refusal(const std::filesystem::path& file) {
    try {
        const Database database(file);
    } catch (const StoreError& error) {
        return error.what();
    }
    return "(opened)";
}

TEST(Database, OfTheFirstVersionIsBroughtUpToDateWithItsRows) {
    const test::TemporaryFolder folder;
    const auto file = folder.path() / "korvi.db";
    // Written out and not taken from the program: this is what lies on the disks of those who have the first version.
    execute(file, R"(
        CREATE TABLE users(id TEXT PRIMARY KEY, email TEXT NOT NULL UNIQUE, created_at TEXT NOT NULL);
        CREATE TABLE codes(email TEXT PRIMARY KEY, code_hash TEXT NOT NULL, expires_at INTEGER NOT NULL, tries_left INTEGER NOT NULL);
        CREATE TABLE sessions(id TEXT PRIMARY KEY, user_id TEXT NOT NULL REFERENCES users(id) ON DELETE CASCADE,
            token_hash TEXT NOT NULL UNIQUE, created_at TEXT NOT NULL);
        CREATE TABLE chats(id INTEGER PRIMARY KEY AUTOINCREMENT, user_id TEXT NOT NULL REFERENCES users(id) ON DELETE CASCADE,
            name TEXT NOT NULL, mode TEXT NOT NULL, created_at TEXT NOT NULL, updated_at TEXT NOT NULL, project_id INTEGER);
        CREATE TABLE messages(id INTEGER PRIMARY KEY AUTOINCREMENT, chat_id INTEGER NOT NULL REFERENCES chats(id) ON DELETE CASCADE,
            role TEXT NOT NULL, content TEXT NOT NULL, created_at TEXT NOT NULL);
        CREATE TABLE answers(message_id INTEGER PRIMARY KEY REFERENCES messages(id) ON DELETE CASCADE, user_id TEXT NOT NULL,
            session_id TEXT NOT NULL, creates_chat INTEGER NOT NULL, state TEXT NOT NULL, error TEXT NOT NULL DEFAULT '',
            ended_at INTEGER NOT NULL DEFAULT 0, delivered INTEGER NOT NULL DEFAULT 0);
        CREATE TABLE pieces(message_id INTEGER NOT NULL REFERENCES messages(id) ON DELETE CASCADE, seq INTEGER NOT NULL,
            kind TEXT NOT NULL, body TEXT NOT NULL, PRIMARY KEY(message_id, seq)) WITHOUT ROWID;
        INSERT INTO users VALUES('u', 'user@example.com', '2026-01-01T00:00:00.000Z');
        INSERT INTO chats VALUES(5, 'u', 'Старый чат', 'auto', '2026-01-01T00:00:00.000Z', '2026-01-01T00:00:00.000Z', NULL);
        INSERT INTO messages VALUES(8, 5, 'user', '[{"type":"text","text":"Вопрос"}]', '2026-01-01T00:00:00.000Z');
        PRAGMA user_version=1;
    )");
    Database database(file);
    ChatStore chats(database);
    const auto chat = chats.setFavorite("u", 5, true);
    ASSERT_TRUE(chat);
    EXPECT_TRUE(chat->isFavorite);
    EXPECT_EQ(chat->name, "Старый чат");
    EXPECT_EQ(chats.messages("u", 5, "").at(0).content, json::parse(R"([{"type":"text","text":"Вопрос"}])"));
}

TEST(Database, ThatIsNotOursIsLeftAlone) {
    const test::TemporaryFolder folder;
    const auto foreign = folder.path() / "foreign.db";
    execute(foreign, "CREATE TABLE other(x)");
    EXPECT_THAT(refusal(foreign), HasSubstr("другой программы"));
    const auto newer = folder.path() / "newer.db";
    execute(newer, "PRAGMA user_version=999");
    EXPECT_THAT(refusal(newer), HasSubstr("более новой версией"));
    const auto text = folder.path() / "text.db";
    const std::string content(5000, 'x');
    std::ofstream(text) << content;
    EXPECT_THAT(refusal(text), HasSubstr(text.string()));
    std::ifstream kept(text);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(kept), {}), content);
}

struct ChatStoreTest : testing::Test {
    test::TemporaryFolder folder;
    Database database{folder.path() / "korvi.db"};
    AccountStore accounts{database};
    ChatStore chats{database};
    std::string user = accounts.addUser("user@example.com").id;

    Answer begin(bool createsChat = false) {
        ChatRow draft;
        draft.userId = user;
        draft.name = "Чат";
        draft.mode = "auto";
        Answer answer;
        answer.userId = user;
        answer.sessionId = "starter";
        answer.createsChat = createsChat;
        chats.beginChat(draft, answer, json::parse(R"([{"type":"text","text":"Вопрос"}])"));
        return answer;
    }
};

TEST_F(ChatStoreTest, ARunningAnswerIsSeenByOtherSessionsAndCountsForItsOwnOnlyAtItsEnd) {
    Answer answer = begin(true);
    answer.pieces = {{PieceKind::thinking, "мысль"}, {PieceKind::text, "начало "}, {PieceKind::text, "ответа"}};
    chats.storePieces({&answer});
    EXPECT_EQ(chats.messages(user, answer.chatId, "starter").size(), 0U);
    const auto seen = chats.messages(user, answer.chatId, "other");
    ASSERT_EQ(seen.size(), 2U);
    const auto content = json::parse(R"([{"type":"thinking","text":"мысль"},{"type":"text","text":"начало ответа"}])");
    EXPECT_EQ(seen[1].content, content);
    EXPECT_EQ(chats.messages("someone", answer.chatId, "other").size(), 0U);
    EXPECT_EQ(chats.history(answer.chatId).size(), 1U);
    answer.state = AnswerState::done;
    chats.endAnswer(answer);
    EXPECT_EQ(chats.messages(user, answer.chatId, "starter").at(1).content, content);
}

TEST_F(ChatStoreTest, WhatACrashLeftRunningIsClosedWithItsPiecesAndKeptForItsSession) {
    Answer answer = begin();
    answer.pieces = {{PieceKind::text, "до сбоя"}};
    chats.storePieces({&answer});
    chats.closeInterrupted("Прервано");
    auto waiting = chats.undelivered(0);
    ASSERT_EQ(waiting.size(), 1U);
    EXPECT_EQ(waiting[0].pieces, answer.pieces);
    EXPECT_EQ(waiting[0].state, AnswerState::interrupted);
    EXPECT_EQ(waiting[0].error, "Прервано");
    EXPECT_EQ(chats.messages(user, answer.chatId, "starter").at(1).content,
        json::parse(R"([{"type":"text","text":"до сбоя"}])"));
    EXPECT_EQ(chats.undelivered(toMillis(WallClock::now()) + 1000).size(), 0U) << "ended too long ago";
    EXPECT_EQ(chats.undelivered(0).size(), 0U);
}

TEST_F(ChatStoreTest, ChatsAreListedFavouritesFirstThenTheLatest) {
    const long long first = begin().chatId;
    const long long second = begin().chatId;
    const long long third = begin().chatId;
    chats.setFavorite(user, first, true);
    std::vector<long long> order;
    for (const auto& chat : chats.chats(user))
        order.push_back(chat.id);
    EXPECT_THAT(order, testing::ElementsAre(first, third, second));
    EXPECT_FALSE(chats.removeChat("someone", second));
    EXPECT_TRUE(chats.removeChat(user, second));
    EXPECT_EQ(chats.chats(user).size(), 2U);
}

}
}
