#include "Support/Client.h"

#include <algorithm>
#include <csignal>
#include <fstream>
#include <gmock/gmock.h>

namespace korvi::service::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

struct AccessTest : testing::Test {
    TemporaryFolder folder;
    ServiceProcess service{folder.path(), {"--demo-delay-ms", "0"}};

    Reply call(const std::string& method, const std::string& path, const std::string& body = {},
        const std::string& token = {}) {
        return request(service.port(), method, path, body, token);
    }
};

TEST_F(AccessTest, SigningInGivesASessionInTheExpectedForm) {
    EXPECT_EQ(call("POST", "/auth/email", R"({"email":"User@Example.com"})").body, json::object());
    const std::string line = service.readLine();
    ASSERT_THAT(line, testing::StartsWith("Код входа для user@example.com: "));
    const std::string code = line.substr(line.size() - 4);
    const std::string wrong = code == "0000" ? "0001" : "0000";
    EXPECT_EQ(
        call("POST", "/auth/email/verify", R"({"email":"user@example.com","code":")" + wrong + "\"}").status, 400);
    auto reply =
        call("POST", "/auth/email/verify", R"({"email":"user@example.com","code":")" + code + R"(","isTrusted":true})");
    ASSERT_EQ(reply.status, 200);
    const std::string token = reply.body["session"]["opaqueToken"];
    for (auto* value : {&reply.body["id"], &reply.body["createdAt"], &reply.body["session"]["id"],
             &reply.body["session"]["createdAt"], &reply.body["session"]["opaqueToken"]}) {
        EXPECT_TRUE(value->is_string());
        *value = "*";
    }
    EXPECT_EQ(reply.body, json::parse(R"({"id":"*","email":"user@example.com","isBlocked":false,"createdAt":"*",
        "settings_includeChatHistory":true,"isRegistration":true,
        "session":{"id":"*","isTrusted":true,"opaqueToken":"*","createdAt":"*"}})"));

    auto user = call("GET", "/user", {}, token);
    EXPECT_EQ(call("GET", "/auth", {}, token).body, json({{"userId", user.body["id"]}}));
    user.body["id"] = user.body["createdAt"] = "*";
    EXPECT_EQ(user.body, json::parse(R"({"id":"*","email":"user@example.com","isBlocked":false,"createdAt":"*",
        "settings_includeChatHistory":true,"organizationMembers":[]})"));

    EXPECT_EQ(call("POST", "/auth/logout", {}, token).body, json::parse(R"({"success":true})"));
    const auto dead = call("GET", "/user", {}, token);
    EXPECT_EQ(dead.status, 401);
    EXPECT_EQ(dead.body, json::parse(R"({"message":"Сессия недействительна. Войдите снова."})"));
}

TEST_F(AccessTest, NeitherTokensNorCodesLieInTheDatabase) {
    const std::string token = signIn(service, "user@example.com");
    call("POST", "/auth/email", R"({"email":"user@example.com"})");
    service.readLine();
    service.signal(SIGTERM);
    service.wait();
    std::ifstream file(folder.path() / "korvi.db", std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(file), {});
    EXPECT_THAT(bytes, HasSubstr("user@example.com"));
    EXPECT_THAT(bytes, Not(HasSubstr(token)));
}

TEST_F(AccessTest, WhatCannotBeServedIsAnsweredWithAMessage) {
    const std::string token = signIn(service, "user@example.com");
    struct Case {
        long status;
        const char* method;
        const char* path;
        std::string body;
    };
    const std::vector<Case> cases{{404, "GET", "/nothing", ""}, {404, "GET", "/chats/0/messages", ""},
        {404, "GET", "/chats/9223372036854775808/messages", ""}, {404, "GET", "/chats/1x/messages", ""},
        {405, "PUT", "/user", ""}, {404, "DELETE", "/chats/1", ""}, {404, "PATCH", "/chats/1", R"({"name":"x"})"},
        {400, "PATCH", "/chats/1", R"({"name":"  "})"}, {400, "PATCH", "/chats/1", "not json"},
        {400, "PATCH", "/chats/1", std::string(100'000, '[')}, {400, "PUT", "/chats/1/favorite", ""},
        {413, "PATCH", "/chats/1", std::string(1024 * 1024 + 1, ' ')},
        {400, "POST", "/auth/email", R"({"email":"x"})"}};
    for (const Case& each : cases) {
        const auto reply = call(each.method, each.path, each.body, token);
        EXPECT_EQ(reply.status, each.status) << each.method << ' ' << each.path;
        EXPECT_TRUE(reply.body.is_object() && reply.body["message"].is_string()) << each.path;
    }
    EXPECT_EQ(call("GET", "/chats").status, 401);
}

TEST_F(AccessTest, ATicketOpensOneSocketForItsOwnSession) {
    const std::string token = signIn(service, "user@example.com");
    const std::string other = signIn(service, "other@example.com");
    const auto ticket = [&] { return call("GET", "/sockets/ticket", {}, token).body["ticket"].get<std::string>(); };
    const std::string first = ticket();
    EXPECT_THAT(rawUpgrade(service.port(), first, token), HasSubstr("101 Switching Protocols"));
    const std::string refused = rawUpgrade(service.port(), first, token);
    EXPECT_THAT(refused, HasSubstr("HTTP/1.1 403"));
    EXPECT_THAT(
        refused, HasSubstr(R"({"message":"Билет недействителен: он уже использован или устарел. Запросите новый."})"));
    EXPECT_THAT(rawUpgrade(service.port(), ticket(), other), HasSubstr("HTTP/1.1 403"));
    EXPECT_THAT(rawUpgrade(service.port(), "", token), HasSubstr("HTTP/1.1 403"));
    EXPECT_THAT(rawUpgrade(service.port(), ticket(), ""), HasSubstr("101"))
        << "the token may be missing beside the ticket";
}

TEST_F(AccessTest, UsersNeverMeet) {
    const std::string alice = signIn(service, "alice@example.com");
    const std::string bob = signIn(service, "bob@example.com");
    ChatClient aliceSocket(service.port(), alice);
    aliceSocket.send(createFrame("Привет"));
    const long long chat = aliceSocket.receiveAnswer().at(0)["data"]["id"];
    const std::string path = "/chats/" + std::to_string(chat);

    EXPECT_EQ(call("GET", "/chats", {}, bob).body, json::parse(R"({"data":[]})"));
    EXPECT_EQ(call("GET", path + "/messages", {}, bob).status, 404);
    EXPECT_EQ(call("PATCH", path, R"({"name":"x"})", bob).status, 404);
    EXPECT_EQ(call("PUT", path + "/favorite?isFavorite=true", {}, bob).status, 404);
    EXPECT_EQ(call("DELETE", path, {}, bob).status, 404);
    ChatClient bobSocket(service.port(), bob);
    bobSocket.send(sendFrame(chat, "Чужое"));
    EXPECT_EQ(bobSocket.receive(),
        json({{"event", "error"},
            {"data", {{"chatId", chat}, {"message", "Чат не найден: возможно, он был удалён."}}}}));

    const auto messages = call("GET", path + "/messages", {}, alice).body["data"];
    ASSERT_EQ(messages.size(), 2U);
    EXPECT_EQ(messages[0]["content"], json::parse(R"([{"type":"text","text":"Привет"}])"));

    EXPECT_EQ(call("DELETE", "/user", {}, alice).status, 200);
    EXPECT_EQ(call("GET", "/user", {}, alice).status, 401);
    EXPECT_TRUE(aliceSocket.receive().is_null()) << "the socket of a deleted user is closed";
    EXPECT_EQ(call("GET", "/user", {}, bob).status, 200);
}

TEST_F(AccessTest, ChatsAreRenamedMarkedAndDeleted) {
    const std::string token = signIn(service, "user@example.com");
    ChatClient socket(service.port(), token);
    socket.send(createFrame("  Какой-то очень длинный вопрос,\nкоторый не поместится в название целиком "));
    auto chat = socket.receiveAnswer().at(0)["data"];
    EXPECT_EQ(chat["name"], "Какой-то очень длинный вопрос, который не");
    const std::string path = "/chats/" + chat["id"].dump();
    auto renamed = call("PATCH", path, R"({"name":" Новое\nимя "})", token).body;
    EXPECT_EQ(renamed["name"], "Новое имя");
    EXPECT_EQ(call("PUT", path + "/favorite?isFavorite=true&org=1", {}, token).body["isFavorite"], true);
    for (const char* key : {"id", "userId", "createdAt", "updatedAt"})
        renamed[key] = "*";
    EXPECT_EQ(renamed,
        json::parse(
            R"({"id":"*","name":"Новое имя","mode":"auto","createdAt":"*","updatedAt":"*","userId":"*","isFavorite":false})"));
    EXPECT_EQ(call("DELETE", path, {}, token).body, json::parse(R"({"success":true})"));
    EXPECT_EQ(call("GET", "/chats", {}, token).body["data"].size(), 0U);
}

}
}
