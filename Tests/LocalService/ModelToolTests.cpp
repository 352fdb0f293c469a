// What a model asks for on its way to an answer.
#include "Support/Conversation.h"

#include <gmock/gmock.h>

namespace korvi::service::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const std::string tools = Conversation::toolsOption;
/// One red point.
const std::string pointPng =
    "iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR4nGP4z8DwHwAFAAH/iZk9HQAAAABJRU5ErkJggg==";

json callDelta(int index, const std::string& id, const std::string& name, const std::string& arguments) {
    json call{{"index", index}, {"function", {{"arguments", arguments}}}};
    if (!id.empty()) {
        call["id"] = id;
        call["type"] = "function";
        call["function"]["name"] = name;
    }
    return {{"tool_calls", {call}}};
}

const std::string finishedWithTools =
    "data: {\"choices\":[{\"index\":0,\"delta\":{},\"finish_reason\":\"tool_calls\"}]}\n\ndata: [DONE]\n\n";

std::vector<std::string> streamOf(const std::string& text) {
    return {streamHead(), event({{"content", text}}), "data: [DONE]\n\n"};
}

/// A round in which the model wants this one call.
std::vector<std::string> callOf(const std::string& name, const json& arguments) {
    return {streamHead(), event(callDelta(0, "call_1", name, arguments.dump())), finishedWithTools};
}

std::vector<json> only(const std::vector<json>& frames, const std::string& tool) {
    std::vector<json> found;
    for (const json& frame : frames)
        if (frame["data"].value("tool", "") == tool)
            found.push_back(frame);
    return found;
}

TEST(ModelTool, ASearchInPiecesIsCarriedOutShownAndCited) {
    FakeModel engine({{jsonAnswer(json::parse(R"({"query":"озеро Байкал","results":[
        {"title":"Байкал","url":"https://www.baikal.ru/глубина","content":"Глубина 1642 м.","thumbnail":"//img.baikal.ru/1.png"},
        {"title":"Без адреса","content":"x"},{"title":"Скрипт","url":"javascript:alert`1`"},7,
        {"title":"Берег","url":"https://photo.ru/1","img_src":"https://photo.ru/1.jpg"}],
        "answers":["1642 метра",{"answer":"Да","url":"https://a.ru"}]})"))}});
    const std::string body = event({{"content", "Сейчас поищу в сети. "}}) +
        event(callDelta(0, "call_a", "web_search", "")) + event(callDelta(0, "", "", R"({"que)")) +
        event(callDelta(0, "", "", R"(ry":"озеро \u0411)")) + event(callDelta(0, "", "", R"(айкал"})")) +
        finishedWithTools;
    Conversation talk({{split(body, 5)}, {streamOf("Глубина — 1642 метра [[1]](https://www.baikal.ru/глубина).")}},
        {tools, "--search-url", engine.url() + "/search"});
    const auto frames = talk.ask("Насколько глубок Байкал?");
    EXPECT_EQ(frames.back()["event"], "end");
    auto search = only(frames, "web_search");
    ASSERT_EQ(search.size(), 3U);
    EXPECT_EQ(search[1]["data"]["args"], json::parse(R"({"query":"озеро Байкал"})"));
    json content = search[2]["data"]["content"];
    EXPECT_TRUE(content["responseTime"].is_number());
    content.erase("responseTime");
    EXPECT_EQ(content, json::parse(R"({"query":"озеро Байкал",
        "answer":[{"text":"1642 метра"},{"text":"Да","sources":[{"url":"https://a.ru","index":2}]}],
        "results":[{"title":"Байкал","url":"https://www.baikal.ru/глубина","content":"Глубина 1642 м.",
                    "favicon":"https://www.baikal.ru/favicon.ico"}],
        "images":[{"url":"https://img.baikal.ru/1.png","description":"Байкал"},
                  {"url":"https://photo.ru/1.jpg","description":"Берег"}]})"));
    EXPECT_THAT(engine.script(0).head, StartsWith("GET /v1/search?format=json&q=%D0%BE%D0%B7%D0%B5%D1%80%D0%BE%20"));

    const json blocks = talk.messages(frames[0]["data"]["id"])[1]["content"];
    ASSERT_EQ(blocks.size(), 4U);
    EXPECT_EQ(blocks[0]["text"], "Сейчас поищу в сети. ");
    EXPECT_EQ(blocks[1]["type"], "search");
    EXPECT_EQ(blocks[2]["text"], "Глубина — 1642 метра .");
    EXPECT_EQ(blocks[3]["results"][0]["title"], "baikal.ru");

    const json& first = talk.model.script(0).request;
    std::vector<std::string> offered;
    for (const json& tool : first["tools"])
        offered.push_back(tool["function"]["name"]);
    EXPECT_THAT(offered, testing::ElementsAre("web_search", "create_document", "artifact"));
    json second = talk.model.script(1).request["messages"];
    EXPECT_THAT(second[2]["content"].get<std::string>(), HasSubstr("[1] Байкал\nhttps://www.baikal.ru/глубина"));
    second[2]["content"] = "*";
    EXPECT_EQ(second, json::parse(R"([{"role":"user","content":"Насколько глубок Байкал?"},
        {"role":"assistant","content":"Сейчас поищу в сети. ","tool_calls":[{"id":"call_a","type":"function",
            "function":{"name":"web_search","arguments":"{\"query\":\"озеро \\u0411айкал\"}"}}]},
        {"role":"tool","tool_call_id":"call_a","content":"*"}])"));
}

TEST(ModelTool, AFailedSearchIsToldToBoth) {
    FakeModel engine({{jsonAnswer({{"error", "no"}}, "403 Forbidden")}});
    Conversation talk(
        {{callOf("web_search", {{"query", "x"}})}, {streamOf("Без поиска.")}}, {tools, "--search-url", engine.url()});
    const auto frames = talk.ask("Найди");
    EXPECT_THAT(only(frames, "web_search").back()["data"]["content"]["answer"][0]["text"].get<std::string>(),
        StartsWith("Поиск не удался"));
    EXPECT_EQ(joined(frames, "chunk"), "Без поиска.");
    EXPECT_THAT(talk.model.script(1).request["messages"][2]["content"].get<std::string>(), StartsWith("Error"));
}

TEST(ModelTool, AnArtifactIsShownWhileItIsWritten) {
    const std::string text = "<b>\"Привет\"</b> \\ 😀\nвторая строка, подлиннее, чтобы вышло несколько частей ответа";
    const json arguments{{"id", "my page!"}, {"title", "Страница"}, {"kind", "HTML"}, {"text", text}};
    std::string body = event({{"content", "Вот страница."}});
    std::string written = arguments.dump(-1, ' ', true); // with surrogate pairs
    // nlohmann sorts the members; a model keeps to the order it was told.
    written = R"({"id":"my page!","title":"Страница","kind":"HTML","text":)" + json(text).dump(-1, ' ', true) + "}";
    body += event(callDelta(0, "call_1", "artifact", ""));
    for (std::size_t at = 0; at < written.size();) {
        std::size_t end = at + 3;
        while (end < written.size() && (static_cast<unsigned char>(written[end]) & 0xC0U) == 0x80U)
            ++end;
        body += event(callDelta(0, "", "", written.substr(at, end - at)));
        at = end;
    }
    Conversation talk(
        {{split(body + finishedWithTools, 1000)}, {streamOf("Готово.")},
            {callOf("artifact", {{"id", "mypage"}, {"title", "Страница"}, {"kind", "html"}, {"text", "2"}})},
            {streamOf("Переделано.")}},
        {tools});
    const auto frames = talk.ask("Сделай страницу");
    const auto tool = only(frames, "artifact");
    EXPECT_EQ(tool[0]["event"], "tool_start");
    EXPECT_EQ(tool[1]["data"]["args"], json::parse(R"({"id":"mypage","version":1})"));
    std::string streamed;
    int parts = 0;
    for (const json& frame : tool) {
        const std::string part = frame["data"].value("args", json::object()).value("text", "");
        streamed += part;
        parts += part.empty() ? 0 : 1;
    }
    EXPECT_EQ(streamed, text);
    EXPECT_GT(parts, 1);
    const json whole{{"id", "mypage"}, {"title", "Страница"}, {"kind", "html"}, {"text", text}, {"version", 1}};
    EXPECT_EQ(tool.back()["data"]["content"], whole);
    const long long chat = frames[0]["data"]["id"];
    json block = whole;
    block["type"] = "artifact";
    EXPECT_EQ(talk.messages(chat)[1]["content"],
        json::array({{{"type", "text"}, {"text", "Вот страница."}}, block, {{"type", "text"}, {"text", "Готово."}}}));

    talk.client->send(sendFrame(chat, "Переделай"));
    EXPECT_EQ(only(talk.client->receiveAnswer(), "artifact").back()["data"]["content"]["version"], 2);
    const std::string history = talk.model.script(2).request["messages"][1]["content"];
    EXPECT_THAT(history, HasSubstr("id mypage"));
    EXPECT_THAT(history, HasSubstr(text));
}

TEST(ModelTool, SeveralCallsInOneRoundAreCarriedOutInTheirOrder) {
    const std::string page = R"({"id":"p","title":"П","kind":"html","text":"<p>"})";
    const std::string list = R"({"id":"l","title":"Л","kind":"markdown","text":"- один)"; // cut off
    const std::string body = event(callDelta(0, "a", "artifact", page.substr(0, 15))) +
        event(callDelta(0, "", "", page.substr(15))) + event(callDelta(1, "b", "artifact", list)) +
        event(callDelta(2, "c", "create_document", R"({"filename":"../заметки.exe","text":"Текст"})")) +
        event(callDelta(3, "d", "dance", "{}")) + event(callDelta(4, "e", "create_document", "{broken")) +
        finishedWithTools;
    Conversation talk({{split(body, 64)}, {streamOf("Всё готово, смотрите.")}}, {tools});
    const auto frames = talk.ask("Сделай всё");
    const json blocks = talk.messages(frames[0]["data"]["id"])[1]["content"];
    ASSERT_EQ(blocks.size(), 4U) << blocks;
    EXPECT_EQ(blocks[0]["id"], "p");
    EXPECT_EQ(blocks[1]["text"], "- один");
    EXPECT_EQ(blocks[2]["filename"], "заметки.exe.txt");
    EXPECT_EQ(blocks[2]["mimetype"], "text/plain");
    EXPECT_EQ(fetch(blocks[2]["fileUrl"]).body, "Текст");
    const json& told = talk.model.script(1).request["messages"];
    ASSERT_EQ(told.size(), 7U);
    EXPECT_EQ(told[2]["content"], "The user sees the document. Its id is \"p\".");
    EXPECT_THAT(told[3]["content"].get<std::string>(), HasSubstr("broke off"));
    EXPECT_THAT(told[5]["content"].get<std::string>(), HasSubstr("no tool \"dance\""));
    EXPECT_THAT(told[6]["content"].get<std::string>(), HasSubstr("not a JSON object"));
    EXPECT_EQ(told[6]["tool_call_id"], "e");
}

TEST(ModelTool, APictureIsDrawnAndKept) {
    Conversation talk({{callOf("generate_image", {{"prompt", "a red point"}})},
                          {jsonAnswer({{"data", {{{"b64_json", pointPng}}}}})}, {streamOf("Вот ваша картинка.")}},
        {tools, "--image-model", "painter"});
    const auto frames = talk.ask("Нарисуй точку");
    EXPECT_EQ(talk.model.script(1).request, json::parse(R"({"model":"painter","prompt":"a red point","n":1})"));
    EXPECT_THAT(talk.model.script(1).head, StartsWith("POST /v1/images/generations "));
    const std::string address = only(frames, "generateImage").back()["data"]["content"]["imageUrl"];
    EXPECT_EQ(fetch(address).headers.at("content-type"), "image/png");
    EXPECT_EQ(talk.messages(frames[0]["data"]["id"])[1]["content"],
        json::array({{{"type", "text"}, {"text", "\n\n![image](" + address + ")\n\nВот ваша картинка."}}}));
}

TEST(ModelTool, APictureThatFailsEndsTheAnswerWithItsReason) {
    FakeModel store({{{"HTTP/1.1 200 OK\r\nContent-Length: 6\r\nConnection: close\r\n\r\n<html>"}}});
    const auto call = callOf("generate_image", {{"prompt", "x"}});
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases{
        {jsonAnswer({{"error", {{"message", "content policy"}}}}, "400 Bad Request"), "ошибкой 400 («content policy»)"},
        {jsonAnswer({{"data", json::array()}}), "не прислал картинки"},
        {jsonAnswer({{"data", {{{"b64_json", "AAAA"}}}}}), "не картинку"},
        {jsonAnswer({{"data", {{{"url", store.url()}}}}}), "не картинку"},
    };
    std::vector<FakeModel::Script> scripts;
    for (const auto& each : cases) {
        scripts.push_back({call});
        scripts.push_back({each.first});
    }
    Conversation talk(scripts, {tools, "--image-model", "painter"});
    for (const auto& each : cases) {
        const auto frames = talk.ask("Нарисуй");
        const json content = only(frames, "generateImage").back()["data"]["content"];
        EXPECT_EQ(content["type"], "text");
        EXPECT_THAT(content["text"].get<std::string>(), StartsWith("Не удалось создать изображение: "));
        EXPECT_THAT(content["text"].get<std::string>(), HasSubstr(each.second));
        EXPECT_EQ(frames.back()["event"], "end");
        EXPECT_EQ(talk.messages(frames[0]["data"]["id"])[1]["content"], json::array({content}));
    }
}

TEST(ModelTool, AModelThatNeverStopsAskingIsStopped) {
    std::vector<FakeModel::Script> scripts;
    for (int i = 0; i < 9; ++i)
        scripts.push_back({callOf("dance", json::object())});
    Conversation talk(scripts, {tools});
    const auto frames = talk.ask("Танцуй");
    EXPECT_EQ(frames.back()["event"], "error");
    EXPECT_TRUE(talk.model.script(7).request.contains("tools"));
    EXPECT_FALSE(talk.model.script(8).request.contains("tools")) << "the last round is for an answer";
}

TEST(ModelTool, AnEndpointThatKnowsNoToolsIsAskedWithoutThem) {
    Conversation talk({{jsonAnswer({{"error", {{"message", "model does not support tools"}}}}, "400 Bad Request")},
                          {streamOf("Обычный ответ.")}},
        {tools});
    EXPECT_EQ(joined(talk.ask("Привет"), "chunk"), "Обычный ответ.");
    EXPECT_FALSE(talk.model.script(1).request.contains("tools"));
}

TEST(ModelTool, AttachmentsReachTheModel) {
    Conversation talk({{streamOf("Вижу.")}, {streamOf("Помню.")}});
    const int port = talk.service->port();
    std::string picture = "\x89PNG\r\n\x1A\n";
    const std::string image = uploaded(port, talk.token, "a.png", picture);
    const std::string text = uploaded(port, talk.token, "a.py", "print('привет')\n");
    const std::string large = uploaded(port, talk.token, "b.txt", std::string(70'000, 'x'));
    const std::string archive = uploaded(port, talk.token, "c.zip", "PK");
    const auto file = [](const std::string& url, const char* name) {
        return json{{"type", "file_url"}, {"fileUrl", url}, {"filename", name}, {"mimetype", "text/plain"}};
    };
    const json content{{{"type", "image_url"}, {"imageUrl", image}}, file(text, "a.py"), file(large, "b.txt"),
        file(archive, "c.zip"), {{"type", "text"}, {"text", "Что здесь?"}}};
    talk.client->send({{"event", "create"}, {"data", {{"mode", "auto"}, {"content", content}}}});
    const long long chat = talk.client->receiveAnswer()[0]["data"]["id"];
    const json sent = talk.model.script(0).request["messages"][0]["content"];
    ASSERT_EQ(sent.size(), 2U) << sent;
    EXPECT_EQ(sent[0]["image_url"]["url"], "data:image/png;base64,iVBORw0KGgo=");
    const std::string said = sent[1]["text"];
    EXPECT_THAT(
        said, StartsWith("[Приложен файл: a.py]\nprint('привет')\n\n[Конец файла]\n[Приложен файл: b.txt]\nxxx"));
    EXPECT_THAT(said, HasSubstr("x\n[...]\n[Конец файла]\n[Приложен файл: c.zip]\nЧто здесь?"));
    EXPECT_LT(said.size(), 67'000U);
    talk.client->send(sendFrame(chat, "А теперь?"));
    talk.client->receiveAnswer();
    EXPECT_EQ(talk.model.script(1).request["messages"][0]["content"], sent);
}

TEST(ModelTool, APdfIsReadForTheModel) {
    if (std::system("command -v pdftotext >/dev/null 2>&1") != 0) // NOLINT(concurrency-mt-unsafe)
        GTEST_SKIP() << "there is no pdftotext here";
    const std::string objects =
        "%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n"
        "2 0 obj<</Type/Pages/Kids[3 0 R]/Count 1>>endobj\n"
        "3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 300 100]/Contents 4 0 R/Resources"
        "<</Font<</F1<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>>>>>>>endobj\n"
        "4 0 obj<</Length 44>>stream\nBT /F1 18 Tf 20 50 Td (Hello from paper) Tj ET\nendstream "
        "endobj\ntrailer<</Root 1 0 R>>\n%%EOF\n";
    Conversation talk({{streamOf("Прочёл.")}});
    const std::string address = uploaded(talk.service->port(), talk.token, "a.pdf", objects);
    const json content = json::array(
        {{{"type", "file_url"}, {"fileUrl", address}, {"filename", "a.pdf"}, {"mimetype", "application/pdf"}}});
    talk.client->send({{"event", "create"}, {"data", {{"mode", "auto"}, {"content", content}}}});
    talk.client->receiveAnswer();
    EXPECT_THAT(
        talk.model.script(0).request["messages"][0]["content"].get<std::string>(), HasSubstr("Hello from paper"));
}

TEST(ModelTool, ThatIsStoppedInTheMiddleIsDropped) {
    Conversation talk({{callOf("generate_image", {{"prompt", "x"}})}, {{}, true}, {streamOf("Другой ответ.")}},
        {tools, "--image-model", "painter"});
    talk.client->send(createFrame("Нарисуй"));
    const long long chat = talk.client->receive()["data"]["id"];
    EXPECT_EQ(talk.client->receive()["event"], "tool_start");
    talk.model.waitForRequests(2);
    talk.client->send({{"event", "abort"}, {"data", {{"chatId", chat}}}});
    EXPECT_EQ(talk.client->receiveAnswer().back()["event"], "end");
    EXPECT_EQ(talk.messages(chat)[1]["content"], json::array());
    // The far side serves one connection at a time: it gets to the next only when the picture's is closed.
    EXPECT_EQ(joined(talk.ask("Ещё"), "chunk"), "Другой ответ.");
}

}
}
