#include "Support/Client.h"

#include <csignal>
#include <gmock/gmock.h>

namespace korvi::service::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

struct AnswerTest : testing::Test {
    TemporaryFolder folder;

    static json messages(const ServiceProcess& service, long long chat, const std::string& token) {
        return request(service.port(), "GET", "/chats/" + std::to_string(chat) + "/messages", {}, token).body["data"];
    }
    static std::string textOf(const json& message, const std::string& type = "text") {
        std::string text;
        for (const json& block : message["content"])
            if (block["type"] == type)
                text += block["text"].get<std::string>();
        return text;
    }
    /// Reads until `count` chunks have come.
    static std::vector<json> receiveChunks(ChatClient& client, int count) {
        std::vector<json> frames;
        while (count > 0) {
            frames.push_back(client.receive());
            count -= frames.back()["event"] == "chunk" ? 1 : 0;
        }
        return frames;
    }
};

TEST_F(AnswerTest, ComesAsCreateThinkingChunksAndEndAndStandsInTheHistory) {
    ServiceProcess service(folder.path(), {"--demo-delay-ms", "0"});
    const std::string token = signIn(service, "user@example.com");
    ChatClient client(service.port(), token);
    client.send(createFrame("Объясни сортировку слиянием и покажи код на Python"));
    const auto frames = client.receiveAnswer();
    EXPECT_EQ(frames.front()["event"], "create");
    EXPECT_EQ(frames.back(), json::parse(R"({"event":"end","data":{}})"));
    const auto stored = messages(service, frames.front()["data"]["id"], token);
    ASSERT_EQ(stored.size(), 2U);
    EXPECT_EQ(stored[1]["role"], "ai");
    EXPECT_EQ(stored[1]["usageTokens"], 0);
    EXPECT_EQ(textOf(stored[1], "thinking"), joined(frames, "thinking"));
    const std::string text = textOf(stored[1]);
    EXPECT_EQ(text, joined(frames, "chunk"));
    for (const char* expected : {"**Сортировка слиянием**", "$$", "```python", "| Алгоритм |", "`sorted()`"})
        EXPECT_THAT(text, HasSubstr(expected));
    EXPECT_THAT(text, testing::Not(HasSubstr("\\n")));
}

TEST_F(AnswerTest, AttachmentsComeBackAsTheyWereSent) {
    ServiceProcess service(folder.path(), {"--demo-delay-ms", "0"});
    const std::string token = signIn(service, "user@example.com");
    ChatClient client(service.port(), token);
    const auto content = json::parse(R"([{"type":"image_url","imageUrl":"http://x/1.png"},
        {"type":"file_url","fileUrl":"http://x/a.pdf","filename":"отчёт.pdf","mimetype":"application/pdf"}])");
    client.send({{"event", "create"},
        {"data", {{"mode", "auto"}, {"content", content}, {"flags", {{"vision", true}}}, {"projectId", 12}}}});
    const auto frames = client.receiveAnswer();
    EXPECT_EQ(frames[0]["data"]["name"], "отчёт.pdf");
    EXPECT_EQ(frames[0]["data"]["projectId"], 12);
    EXPECT_EQ(messages(service, frames[0]["data"]["id"], token)[0]["content"], content);
}

TEST_F(AnswerTest, ABadFrameIsAnsweredAndTheConnectionGoesOn) {
    ServiceProcess service(folder.path(), {"--demo-delay-ms", "0"});
    ChatClient client(service.port(), signIn(service, "user@example.com"));
    for (const std::string& bad :
        std::vector<std::string>{"", "nonsense", "[]", "{}", R"({"event":"create"})", R"({"event":7,"data":{}})",
            R"({"event":"dance","data":{}})", R"({"event":"create","data":{"mode":"auto","content":[]}})",
            R"({"event":"create","data":{"mode":"auto","content":[{"type":"text"}]}})",
            R"({"event":"send","data":{"chatId":"1","content":[]}})",
            R"({"event":"send","data":{"chatId":1e300,"content":[]}})", R"({"event":"abort","data":{}})",
            std::string(500'000, '['), createFrame(std::string(300'000, 'x')).dump()}) {
        client.sendText(bad);
        const auto answer = client.receive();
        EXPECT_EQ(answer["event"], "error") << bad.substr(0, 80);
        EXPECT_TRUE(answer["data"]["message"].is_string());
    }
    client.send(createFrame("Привет"));
    EXPECT_EQ(client.receiveAnswer().back()["event"], "end");
    client.sendText(std::string(1024 * 1024 + 1, ' '));
    EXPECT_TRUE(client.receive().is_null());
    EXPECT_EQ(client.closeCode(), 1009);
}

TEST_F(AnswerTest, AFailedAnswerKeepsItsText) {
    ServiceProcess service(folder.path(), {"--demo-delay-ms", "0"});
    const std::string token = signIn(service, "user@example.com");
    ChatClient client(service.port(), token);
    client.send(createFrame("Покажи ошибку"));
    const auto frames = client.receiveAnswer();
    const long long chat = frames[0]["data"]["id"];
    EXPECT_EQ(frames.back()["event"], "error");
    EXPECT_EQ(frames.back()["data"]["chatId"], chat);
    EXPECT_EQ(textOf(messages(service, chat, token)[1]), joined(frames, "chunk"));
    EXPECT_FALSE(joined(frames, "chunk").empty());
}

TEST_F(AnswerTest, AnAbortedAnswerEndsWithWhatItHas) {
    ServiceProcess service(folder.path(), {"--demo-delay-ms", "5"});
    const std::string token = signIn(service, "user@example.com");
    const std::string second = signIn(service, "other@example.com");
    ChatClient client(service.port(), token);
    ChatClient stranger(service.port(), second);
    client.send(createFrame("Медленный ответ"));
    auto frames = receiveChunks(client, 2);
    const long long chat = frames[0]["data"]["id"];
    stranger.send({{"event", "abort"}, {"data", {{"chatId", chat}}}});
    stranger.send(createFrame("Привет"));
    stranger.receiveAnswer();
    for (const auto& frame : receiveChunks(client, 1))
        frames.push_back(frame);
    client.send({{"event", "abort"}, {"data", {{"chatId", chat}}}});
    for (const auto& frame : client.receiveAnswer())
        frames.push_back(frame);
    EXPECT_EQ(frames.back()["event"], "end");
    const auto text = textOf(messages(service, chat, token)[1]);
    EXPECT_EQ(text, joined(frames, "chunk"));
    EXPECT_THAT(text, testing::Not(HasSubstr("медленный ответ закончен")));
}

TEST_F(AnswerTest, ASecondAnswerWaitsForTheFirst) {
    ServiceProcess service(folder.path(), {"--demo-delay-ms", "1"});
    ChatClient client(service.port(), signIn(service, "user@example.com"));
    client.send(createFrame("Покажи таблицу"));
    client.send(createFrame("Покажи ошибку"));
    client.sendText("nonsense");
    const auto first = client.receiveAnswer();
    EXPECT_EQ(first.back()["event"], "end");
    EXPECT_THAT(joined(first, "chunk"), HasSubstr("Меркурий"));
    const auto second = client.receiveAnswer();
    EXPECT_EQ(second.front()["event"], "create");
    EXPECT_EQ(second.back()["data"]["chatId"], second.front()["data"]["id"]);
    EXPECT_FALSE(client.receive()["data"].contains("chatId"));
}

TEST_F(AnswerTest, GoesOnWithoutTheClientAndIsReplayedExactly) {
    ServiceProcess service(folder.path(), {"--demo-delay-ms", "2"});
    const std::string token = signIn(service, "user@example.com");
    ChatClient client(service.port(), token);
    client.send(createFrame("Покажи код"));
    auto before = receiveChunks(client, 12);
    const long long chat = before[0]["data"]["id"];
    client.cut();

    ChatClient again(service.port(), token);
    auto after = again.receiveAnswer();
    EXPECT_EQ(after.back()["event"], "end");
    const std::string text = textOf(messages(service, chat, token)[1]);
    EXPECT_EQ(joined(after, "chunk"), text);
    // The same borders: what came before the cut is the beginning of what comes now.
    std::erase_if(before, [](const json& frame) { return frame["event"] != "chunk"; });
    std::erase_if(after, [](const json& frame) { return frame["event"] != "chunk"; });
    ASSERT_GE(after.size(), before.size());
    EXPECT_TRUE(std::equal(before.begin(), before.end(), after.begin()));
}

TEST_F(AnswerTest, ThatEndedWhileTheClientWasAwayIsReplayedOnce) {
    ServiceProcess service(folder.path(), {"--demo-delay-ms", "0"});
    const std::string token = signIn(service, "user@example.com");
    const std::string watcher = signIn(service, "user@example.com");
    long long chat = 0;
    {
        ChatClient client(service.port(), token);
        client.send(createFrame("Покажи код"));
        chat = client.receive()["data"]["id"];
        client.cut();
    }
    // Another session of the user sees it end.
    while (request(service.port(), "GET", "/chats", {}, watcher).body["data"].empty() ||
        textOf(messages(service, chat, watcher)[1]).find("демонстрация") == std::string::npos) {
    }
    ChatClient again(service.port(), token);
    EXPECT_EQ(joined(again.receiveAnswer(), "chunk"), textOf(messages(service, chat, token)[1]));
    // The next answer comes alone: reading it answers the ping that was sent behind the first.
    again.send(sendFrame(chat, "Привет"));
    again.receiveAnswer();
    again.send(sendFrame(chat, "Привет"));
    again.receiveAnswer();
    again.cut();
    ChatClient third(service.port(), token);
    third.sendText("nonsense");
    auto rest = third.receiveAnswer();
    while (rest.back()["event"] == "end")
        rest = third.receiveAnswer();
    EXPECT_EQ(rest.size(), 1U) << "nothing of what was confirmed comes again";
}

TEST_F(AnswerTest, StreamsToTheSessionThatAskedAndIsThereForTheOthersOfItsUser) {
    ServiceProcess service(folder.path(), {"--demo-delay-ms", "20"});
    const std::string token = signIn(service, "user@example.com");
    const std::string otherToken = signIn(service, "user@example.com");
    ChatClient client(service.port(), token);
    ChatClient other(service.port(), otherToken);
    client.send(createFrame("Медленный ответ"));
    const auto begun = receiveChunks(client, 1);
    const long long chat = begun[0]["data"]["id"];
    EXPECT_TRUE(messages(service, chat, token).empty()) << "to the one who waits, a longer list means an end";
    const auto seen = messages(service, chat, otherToken);
    ASSERT_EQ(seen.size(), 2U);
    EXPECT_EQ(textOf(seen[0]), "Медленный ответ");
    EXPECT_THAT(textOf(seen[1]), testing::StartsWith(joined(begun, "chunk")));

    // Both ask in one chat at the same time; each gets its own answer, and the other session may stop the first one.
    other.send(sendFrame(chat, "Покажи таблицу, эхо"));
    const auto table = other.receiveAnswer();
    EXPECT_THAT(joined(table, "chunk"), testing::StartsWith("> Покажи таблицу, эхо"));
    EXPECT_EQ(table.back()["event"], "end");
    other.send({{"event", "abort"}, {"data", {{"chatId", chat}}}});
    EXPECT_EQ(client.receiveAnswer().back()["event"], "end");
    const auto all = messages(service, chat, token);
    EXPECT_EQ(all, messages(service, chat, otherToken));
    ASSERT_EQ(all.size(), 4U);
    EXPECT_EQ(textOf(all[3]), joined(table, "chunk"));
}

TEST_F(AnswerTest, BringsItsChatToTheTopOfTheListOfEverySession) {
    ServiceProcess service(folder.path(), {"--demo-delay-ms", "0"});
    const std::string token = signIn(service, "user@example.com");
    const std::string otherToken = signIn(service, "user@example.com");
    ChatClient client(service.port(), token);
    ChatClient other(service.port(), otherToken);
    std::vector<long long> chats;
    for (int i = 0; i < 3; ++i) {
        client.send(createFrame("Привет"));
        chats.push_back(client.receiveAnswer()[0]["data"]["id"]);
    }
    other.send(sendFrame(chats[0], "Ещё"));
    other.receiveAnswer();
    for (const auto& each : {token, otherToken}) {
        std::vector<long long> order;
        const json list = request(service.port(), "GET", "/chats", {}, each).body["data"];
        for (const json& chat : list)
            order.push_back(chat["id"]);
        EXPECT_EQ(order, (std::vector{chats[0], chats[2], chats[1]}));
    }
}

TEST_F(AnswerTest, SurvivesAKillUpToWhatWasSeen) {
    std::string token;
    std::vector<json> before;
    {
        ServiceProcess service(folder.path(), {"--demo-delay-ms", "2"});
        token = signIn(service, "user@example.com");
        ChatClient client(service.port(), token);
        client.send(createFrame("Покажи размышление и потом длинный ответ"));
        before = receiveChunks(client, 10);
        service.signal(SIGKILL);
        EXPECT_EQ(service.wait(), 128 + SIGKILL);
    }
    const long long chat = before[0]["data"]["id"];
    ServiceProcess service(folder.path());
    ASSERT_NE(service.port(), 0) << service.errors();
    const auto stored = messages(service, chat, token);
    ASSERT_EQ(stored.size(), 2U);
    EXPECT_THAT(textOf(stored[1]), testing::StartsWith(joined(before, "chunk")));

    ChatClient again(service.port(), token);
    const auto after = again.receiveAnswer();
    EXPECT_EQ(joined(after, "chunk"), textOf(stored[1]));
    EXPECT_EQ(after.back()["data"]["chatId"], chat);
    EXPECT_EQ(after.back()["data"]["message"],
        "Ответ прерван: сервис был перезапущен. Текст до этого места сохранён — отправьте сообщение ещё раз.");
    again.send(sendFrame(chat, "Привет"));
    EXPECT_EQ(again.receiveAnswer().back()["event"], "end") << "the chat goes on";
}

TEST_F(AnswerTest, IsStoredWhenTheServiceIsAskedToStop) {
    ServiceProcess service(folder.path(), {"--demo-delay-ms", "5"});
    const std::string token = signIn(service, "user@example.com");
    ChatClient client(service.port(), token);
    client.send(createFrame("Медленный ответ"));
    const auto before = receiveChunks(client, 3);
    service.signal(SIGTERM);
    EXPECT_EQ(service.wait(), 0);
    while (!client.receive().is_null()) {
    }
    EXPECT_EQ(client.closeCode(), 1001);
    ServiceProcess again(folder.path());
    const auto stored = messages(again, before[0]["data"]["id"], token);
    EXPECT_THAT(textOf(stored.at(1)), testing::StartsWith(joined(before, "chunk")));
    const auto after = ChatClient(again.port(), token).receiveAnswer();
    EXPECT_EQ(joined(after, "chunk"), textOf(stored.at(1)));
    EXPECT_THAT(after.back()["data"].value("message", ""), HasSubstr("Ответ прерван"));
}

TEST_F(AnswerTest, OfADeletedChatStopsWithAnEnd) {
    ServiceProcess service(folder.path(), {"--demo-delay-ms", "5"});
    const std::string token = signIn(service, "user@example.com");
    ChatClient client(service.port(), token);
    client.send(createFrame("Медленный ответ"));
    const long long chat = receiveChunks(client, 1)[0]["data"]["id"];
    EXPECT_EQ(request(service.port(), "DELETE", "/chats/" + std::to_string(chat), {}, token).status, 200);
    EXPECT_EQ(client.receiveAnswer().back()["event"], "end");
}

TEST_F(AnswerTest, AreBoundedPerUserAndANewerConnectionTakesOver) {
    ServiceProcess service(folder.path(), {"--demo-delay-ms", "50"});
    const std::string token = signIn(service, "user@example.com");
    ChatClient client(service.port(), token);
    long long chats[5] = {};
    for (int i = 0; i < 5; ++i)
        client.send(createFrame("Медленный ответ"));
    chats[0] = client.receive()["data"]["id"];
    ChatClient newer(service.port(), token);
    while (!client.receive().is_null()) {
    }
    EXPECT_EQ(client.closeCode(), 1000);
    for (int i = 0; i < 4; ++i) {
        newer.send({{"event", "abort"}, {"data", {{"chatId", chats[0] + i}}}});
        EXPECT_EQ(newer.receiveAnswer().back()["event"], "end");
    }
    EXPECT_THAT(newer.receiveAnswer().back()["data"]["message"].get<std::string>(), HasSubstr("Слишком много ответов"));
}

}
}
