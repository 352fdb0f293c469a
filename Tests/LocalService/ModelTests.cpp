#include "Chat/ChatTitles.h"
#include "Support/Conversation.h"

#include <csignal>
#include <gmock/gmock.h>

namespace korvi::service::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

TEST(Model, AStreamIsFoldedHoweverItIsSplit) {
    const std::string body = ": keep-alive\r\n\r\n" + event({{"role", "assistant"}, {"content", ""}}) +
        event({{"reasoning_content", "Сначала подумаю как следует. "}}) + event({{"content", "Здравствуйте, 👋 "}}) +
        event({{"content", "это ответ модели."}}) +
        "data: {\"choices\":[{\"index\":0,\"delta\":{},\"finish_reason\":\"stop\"}]}\r\n\r\ndata: "
        "{\"choices\":[],\"usage\":{}}\n\ndata: [DONE]\n\n";
    Conversation talk({{split(body, 7)}, {split(event({{"content", "Второй ответ."}}) + "data: [DONE]\n\n", 1000)}});
    const auto frames = talk.ask("Привет");
    EXPECT_EQ(frames.back()["event"], "end");
    EXPECT_EQ(joined(frames, "thinking"), "Сначала подумаю как следует. ");
    EXPECT_EQ(joined(frames, "chunk"), "Здравствуйте, 👋 это ответ модели.");
    talk.client->send(sendFrame(frames[0]["data"]["id"], "Ещё"));
    EXPECT_EQ(joined(talk.client->receiveAnswer(), "chunk"), "Второй ответ.");
    EXPECT_EQ(talk.model.script(1).request, json::parse(R"({"model":"small-model","stream":true,"messages":[
        {"role":"user","content":"Привет"},{"role":"assistant","content":"Здравствуйте, 👋 это ответ модели."},
        {"role":"user","content":"Ещё"}]})"));
    EXPECT_THAT(talk.model.script(0).head, HasSubstr("POST /v1/chat/completions "));
    EXPECT_THAT(talk.model.script(0).head, HasSubstr("Authorization: Bearer key-of-the-test"));
    talk.service->signal(SIGTERM);
    EXPECT_EQ(talk.service->wait(), 0);
    EXPECT_THAT(talk.service->errors(), Not(HasSubstr("key-of-the-test")));
}

TEST(Model, AnEndpointThatDoesNotStreamAnswersToo) {
    const std::string body =
        R"({"choices":[{"message":{"role":"assistant","content":"Целиком."},"finish_reason":"stop"}]})";
    Conversation talk({{{"HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: " +
        std::to_string(body.size()) + "\r\n\r\n" + body}}});
    const auto frames = talk.ask("Привет");
    EXPECT_EQ(joined(frames, "chunk"), "Целиком.");
    EXPECT_EQ(frames.back()["event"], "end");
}

TEST(Model, WhatGoesWrongSaysWhatToDoAndKeepsTheText) {
    const auto refusal = [](const std::string& status, const std::string& headers, const std::string& body) {
        return std::vector<std::string>{"HTTP/1.1 " + status + "\r\nContent-Type: application/json\r\n" + headers +
            "Content-Length: " + std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n" + body};
    };
    const std::string text = event({{"content", "Начало ответа, которое уже пришло."}});
    struct Case {
        std::vector<std::string> parts;
        const char* message;
        bool hasText;
    };
    const std::vector<Case> cases{
        {refusal("401 Unauthorized", "", R"({"error":{"message":"bad key"}})"),
            "не принял ключ. Проверьте KORVI_OPENAI_KEY", false},
        {refusal("429 Too Many Requests", "Retry-After: 17\r\n", "{}"), "через 17 с.", false},
        {refusal("500 Internal Server Error", "", "<html>"), "ошибка (500)", false},
        {refusal("404 Not Found", "", R"({"error":"model \"small-model\" not found"})"),
            "Проверьте --openai-url и --model", false},
        {refusal("200 OK", "", "<html>hello</html>"), "не похож на ответ модели", false},
        {{streamHead(), text, "data: {broken\n\n"}, "не удалось разобрать", true},
        {{streamHead(), text, "data: {\"error\":{\"message\":\"overloaded\"}}\n\n"}, "overloaded", true},
        {{streamHead(), text, "data: {\"choi"}, "оборвалось", true},
        {{"HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\nContent-Length: 100000\r\n\r\n", text}, "оборвалось",
            true},
    };
    std::vector<FakeModel::Script> scripts;
    for (const Case& each : cases)
        scripts.push_back({each.parts});
    Conversation talk(scripts);
    for (const Case& each : cases) {
        const auto frames = talk.ask("Привет");
        EXPECT_EQ(frames.back()["event"], "error") << each.message;
        EXPECT_THAT(frames.back()["data"].value("message", ""), HasSubstr(each.message));
        EXPECT_EQ(joined(frames, "chunk"), each.hasText ? "Начало ответа, которое уже пришло." : "") << each.message;
    }
}

TEST(Model, ThatFallsSilentIsGivenUp) {
    Conversation talk(
        {{{streamHead(), event({{"content", "Начало ответа, которое уже пришло."}})}, true}}, {"--model-idle-s", "1"});
    const auto frames = talk.ask("Привет");
    EXPECT_EQ(joined(frames, "chunk"), "Начало ответа, которое уже пришло.");
    EXPECT_THAT(frames.back()["data"].value("message", ""), HasSubstr("не отвечает больше 1 с"));
}

TEST(Model, ThatIsStoppedIsDisconnected) {
    Conversation talk(
        {{{streamHead(), event({{"content", "Начало ответа, которое уже пришло и ещё немного, и ещё немного."}})},
             true},
            {{streamHead(), event({{"content", "Другой ответ."}}), "data: [DONE]\n\n"}}});
    talk.client->send(createFrame("Привет"));
    const long long chat = talk.client->receive()["data"]["id"];
    talk.client->send({{"event", "abort"}, {"data", {{"chatId", chat}}}});
    EXPECT_EQ(talk.client->receiveAnswer().back()["event"], "end");
    // The far side serves one connection at a time: it gets to the second only when the first is closed.
    EXPECT_EQ(joined(talk.ask("Ещё"), "chunk"), "Другой ответ.");
}

std::vector<std::string> streamOf(const std::string& text) {
    return {streamHead(), event({{"content", text}}), "data: [DONE]\n\n"};
}

TEST(Title, ComesFromTheModelWhileTheAnswerIsStillRunning) {
    std::promise<void> mayAnswer;
    Conversation talk({{streamOf("Ответ."), false, mayAnswer.get_future().share()}}, {},
        {{{streamHead(), event({{"reasoning_content", "Думаю"}}), event({{"content", "**«Сортировка "}}),
            event({{"content", "слиянием».**\n"}}), "data: [DONE]\n\n"}}});
    talk.client->send(createFrame("Объясни мне, пожалуйста, сортировку слиянием"));
    const long long chat = talk.client->receive()["data"]["id"];
    talk.expectName(chat, "Сортировка слиянием");
    mayAnswer.set_value();
    EXPECT_EQ(joined(talk.client->receiveAnswer(), "chunk"), "Ответ.");
    const json& asked = talk.model.title(0).request;
    EXPECT_EQ(asked["model"], "small-model");
    EXPECT_THAT(asked["messages"][1]["content"].get<std::string>(), HasSubstr("сортировку слиянием"));
}

TEST(Title, DoesNotReplaceANameThatTheUserHasGiven) {
    std::promise<void> mayName;
    Conversation talk({{streamOf("Ответ.")}, {streamOf("Ответ.")}}, {},
        {{streamOf("Название модели"), false, mayName.get_future().share()}, {streamOf("Второе название")}});
    const long long chat = talk.ask("Привет")[0]["data"]["id"];
    const auto renamed = request(
        talk.service->port(), "PATCH", "/chats/" + std::to_string(chat), json{{"name", "Привет"}}.dump(), talk.token);
    EXPECT_EQ(renamed.status, 200);
    mayName.set_value();
    talk.expectName(talk.ask("Ещё")[0]["data"]["id"], "Второе название");
    EXPECT_EQ(talk.nameOf(chat), "Привет");
}

TEST(Title, OfAChatStaysAsItIsWhenNothingFitComes) {
    const std::vector<std::vector<std::string>> failures{streamOf("  \n"), streamOf("***"),
        streamOf("Сортировка слиянием делит массив пополам и сортирует каждую половину."),
        streamOf("<think>Пользователь хочет"), streamOf(std::string(20'000, 'x')),
        {"HTTP/1.1 500 Internal Server Error\r\nContent-Length: 0\r\nConnection: close\r\n\r\n"},
        {streamHead(), event({{"content", "Оборванное"}})}};
    std::vector<FakeModel::Script> answers;
    std::vector<FakeModel::Script> titles;
    for (const auto& each : failures) {
        answers.push_back({streamOf("Ответ.")});
        titles.push_back({each});
    }
    answers.push_back({streamOf("Ответ.")});
    titles.push_back({streamOf("Последнее")});
    Conversation talk(answers, {}, titles);
    std::vector<long long> chats;
    for (std::size_t i = 0; i < answers.size(); ++i)
        chats.push_back(talk.ask("Вопрос")[0]["data"]["id"]);
    talk.expectName(chats.back(), "Последнее");
    chats.pop_back();
    for (const long long chat : chats)
        EXPECT_EQ(talk.nameOf(chat), "Вопрос");
}

TEST(Title, IsFreedOfWhatModelsPutRoundIt) {
    for (const auto& [said, title] :
        std::vector<std::pair<std::string, std::string>>{{"«Корни уравнения»", "Корни уравнения"},
            {"Название: \"Два слова\"\nИ пояснение", "Два слова"}, {"## Заголовок: Отпуск в горах.", "Отпуск в горах"},
            {"Роман «Война и мир»", "Роман «Война и мир»"}, {"«Война» и «мир»", "«Война» и «мир»"},
            {"Отличия C++ от C#", "Отличия C++ от C#"}, {".NET: начало", ".NET: начало"},
            {"<think>\nhm\n</think>\n\nTitle: Merge sort", "Merge sort"}, {"\n\n  два \t слова ", "два слова"},
            {"2 + 2", "2 + 2"}, {"Вот название:\n\n**Отпуск в горах**", "Отпуск в горах"}})
        EXPECT_EQ(titleFromModel(said), title) << said;
    for (const std::string said : {"", "«»", "...", "<think>", "\"", "Название:"})
        EXPECT_EQ(titleFromModel(said), std::nullopt) << said;
}

TEST(Model, ThatIsNotThereIsNamed) {
    TemporaryFolder folder;
    ServiceProcess service(folder.path(), {"--provider", "openai", "--openai-url", "http://127.0.0.1:1/v1"});
    ChatClient client(service.port(), signIn(service, "user@example.com"));
    client.send(createFrame("Привет"));
    EXPECT_THAT(client.receiveAnswer().back()["data"].value("message", ""),
        HasSubstr("не удаётся подключиться к http://127.0.0.1:1/v1"));
}

}
}
