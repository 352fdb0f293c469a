// Tools as the demonstration uses them, on the wire.
#include "Support/Client.h"

#include <csignal>
#include <cstdlib>
#include <functional>
#include <gmock/gmock.h>

namespace korvi::service::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

struct ToolTest : testing::Test {
    TemporaryFolder folder;
    ServiceProcess service{folder.path(), {"--demo-delay-ms", "0"}};
    std::string token = signIn(service, "user@example.com");
    ChatClient client{service.port(), token};

    json messages(long long chat) const {
        return request(service.port(), "GET", "/chats/" + std::to_string(chat) + "/messages", {}, token).body["data"];
    }
    /// The stored blocks of the answer to a question in a new chat, and its frames.
    json ask(const std::string& question, std::vector<json>& frames) {
        client.send(createFrame(question));
        frames = client.receiveAnswer();
        return messages(frames.at(0)["data"]["id"])[1]["content"];
    }
    static std::vector<json> only(const std::vector<json>& frames, const std::string& tool) {
        std::vector<json> found;
        for (const json& frame : frames)
            if (frame["data"].value("tool", "") == tool)
                found.push_back(frame);
        return found;
    }
    /// An address inside a Markdown picture.
    static std::string addressIn(const std::string& text) {
        const auto begin = text.find("![image](") + 9;
        return text.substr(begin, text.find(')', begin) - begin);
    }
};

TEST_F(ToolTest, ASearchIsATurnOfFramesAndABlockBetweenTexts) {
    std::vector<json> frames;
    const json blocks = ask("Найди что-нибудь о Байкале", frames);
    const auto tool = only(frames, "web_search");
    ASSERT_EQ(tool.size(), 3U);
    EXPECT_EQ(tool[0], json::parse(R"({"event":"tool_start","data":{"tool":"web_search"}})"));
    EXPECT_EQ(tool[1],
        json::parse(
            R"({"event":"tool_call_args","data":{"tool":"web_search","args":{"query":"озеро Байкал глубина"}}})"));
    EXPECT_EQ(tool[2]["event"], "tool_end");
    const json& content = tool[2]["data"]["content"];
    EXPECT_EQ(content["results"].size(), 3U);
    EXPECT_EQ(
        content["answer"][0]["sources"][0], json::parse(R"({"url":"https://ru.wikipedia.org/wiki/Байкал","index":1})"));
    for (const std::string& address : {content["images"][0]["url"].get<std::string>(),
             content["images"][2]["url"].get<std::string>(), content["results"][0]["favicon"].get<std::string>()}) {
        const auto picture = fetch(address);
        EXPECT_EQ(picture.headers.at("content-type"), "image/png") << address;
        EXPECT_THAT(picture.body, StartsWith("\x89PNG\r\n"));
    }
    ASSERT_EQ(blocks.size(), 3U);
    EXPECT_EQ(blocks[0]["text"], "Сейчас поищу, что об этом пишут.");
    json search = content;
    search["type"] = "search";
    EXPECT_EQ(blocks[1], search);
    EXPECT_THAT(blocks[2]["text"].get<std::string>(), StartsWith("Байкал — самое глубокое"));
}

TEST_F(ToolTest, APictureJoinsTheTextAndIsAFileOfTheService) {
    std::vector<json> frames;
    const json blocks = ask("Нарисуй закат", frames);
    const auto tool = only(frames, "generateImage");
    ASSERT_EQ(tool.size(), 2U);
    const std::string address = tool[1]["data"]["content"]["imageUrl"];
    EXPECT_EQ(blocks,
        json::array({{{"type", "text"},
            {"text",
                "Рисую по вашему описанию.\n\n![image](" + address +
                    ")\n\nЭту картинку нарисовала не модель, а сама служба: другие слова дают другой пейзаж."}}}));
    const auto picture = fetch(address);
    EXPECT_EQ(picture.headers.at("content-type"), "image/png");
    std::vector<json> again;
    ask("Нарисуй закат", again);
    EXPECT_EQ(fetch(only(again, "generateImage")[1]["data"]["content"]["imageUrl"]).body, picture.body);
    ask("Нарисуй рассвет", again);
    EXPECT_NE(fetch(only(again, "generateImage")[1]["data"]["content"]["imageUrl"]).body, picture.body);
}

TEST_F(ToolTest, FailedAndSlowPicturesSaySo) {
    std::vector<json> frames;
    json blocks = ask("Нарисуй с ошибкой", frames);
    const json failed = only(frames, "generateImage").back();
    EXPECT_EQ(failed["data"]["content"]["type"], "text");
    ASSERT_EQ(blocks.size(), 2U);
    EXPECT_EQ(blocks[1], failed["data"]["content"]);
    EXPECT_THAT(blocks[1]["text"].get<std::string>(), StartsWith("Не удалось создать изображение: "));

    blocks = ask("Нарисуй медленно", frames);
    const auto slow = only(frames, "generateImage");
    ASSERT_EQ(slow.size(), 6U);
    EXPECT_EQ(slow[1], json::parse(R"({"event":"tool_end","data":{"tool":"generateImage","loading":true}})"));
    EXPECT_EQ(blocks.size(), 1U) << blocks;
}

TEST_F(ToolTest, VideosAndDocumentsAreBlocksWithFiles) {
    std::vector<json> frames;
    json blocks = ask("Покажи видео", frames);
    const std::string video = only(frames, "video").back()["data"]["content"]["videoUrl"];
    EXPECT_EQ(blocks[1], json({{"type", "video_url"}, {"videoUrl", video}}));
    EXPECT_EQ(blocks.size(), 3U);
    EXPECT_EQ(fetch(video, {"Range: bytes=0-3"}).body, "\x1A\x45\xDF\xA3");

    blocks = ask("Составь документ", frames);
    const json file = only(frames, "createDocument").back()["data"]["content"];
    EXPECT_EQ(blocks[1],
        json({{"type", "file_url"}, {"fileUrl", file["fileUrl"]}, {"filename", "Демонстрация.pdf"},
            {"mimetype", "application/pdf"}}));
    EXPECT_THAT(fetch(file["fileUrl"]).body, StartsWith("%PDF-"));

    blocks = ask("Составь текстовый файл", frames);
    EXPECT_THAT(fetch(blocks[1]["fileUrl"]).body, HasSubstr("яблоки, 1 кг"));
}

TEST_F(ToolTest, CitationsBecomeABlockAtTheEnd) {
    std::vector<json> frames;
    const json blocks = ask("Покажи источники", frames);
    EXPECT_THAT(joined(frames, "chunk"), HasSubstr("[[1]](https://ru.wikipedia.org"));
    ASSERT_EQ(blocks.size(), 2U);
    EXPECT_THAT(blocks[0]["text"].get<std::string>(), Not(HasSubstr("](http")));
    EXPECT_EQ(blocks[1], json::parse(R"({"type":"search","results":[
        {"title":"ru.wikipedia.org","url":"https://ru.wikipedia.org/wiki/Скорость_света","content":"",
         "favicon":"https://www.google.com/s2/favicons?sz=32&domain=ru.wikipedia.org"},
        {"title":"bipm.org","url":"https://www.bipm.org/en/si-base-units/metre","content":"",
         "favicon":"https://www.google.com/s2/favicons?sz=32&domain=bipm.org"}]})"));
}

TEST_F(ToolTest, ArtifactsStreamAndKeepTheirVersions) {
    for (const auto& [question, kind] : std::vector<std::pair<std::string, std::string>>{{"Артефакт html", "html"},
             {"Артефакт SVG", "svg"}, {"Артефакт на Python", "python"}, {"Артефакт Markdown", "markdown"},
             {"Артефакт Mermaid", "mermaid"}, {"Артефакт LaTeX", "latex"}}) {
        std::vector<json> frames;
        const json blocks = ask(question, frames);
        const auto tool = only(frames, "artifact");
        ASSERT_GT(tool.size(), 6U) << question;
        EXPECT_EQ(tool[0]["event"], "tool_start");
        // What the pieces make together is what the end says and what is stored.
        json built{{"type", "artifact"}, {"id", ""}, {"title", ""}, {"text", ""}};
        for (std::size_t i = 1; i + 1 < tool.size(); ++i)
            for (const auto& [key, value] : tool[i]["data"]["args"].items())
                built[key] = value.is_string() && key != "kind"
                    ? json(built[key].get<std::string>() + value.get<std::string>())
                    : value;
        json ended = tool.back()["data"]["content"];
        ended["type"] = "artifact";
        EXPECT_EQ(built, ended);
        EXPECT_EQ(blocks[1], ended);
        EXPECT_EQ(ended["kind"], kind);
        EXPECT_EQ(ended["version"], 1);
    }
    std::vector<json> frames;
    ask("Артефакт html", frames);
    const long long chat = frames[0]["data"]["id"];
    client.send(sendFrame(chat, "Ещё раз артефакт html"));
    const auto second = only(client.receiveAnswer(), "artifact");
    EXPECT_EQ(second[1]["data"]["args"]["version"], 2) << "with the identifier, before any text";
    EXPECT_EQ(second[1]["data"]["args"]["id"], second.back()["data"]["content"]["id"]);
    EXPECT_EQ(second.back()["data"]["content"]["version"], 2);
    const json all = messages(chat);
    EXPECT_EQ(all[1]["content"][1]["version"], 1);
    EXPECT_EQ(all[3]["content"][1]["version"], 2);
}

TEST_F(ToolTest, SeveralInOneAnswerStandInTheirOrder) {
    std::vector<json> frames;
    const json blocks = ask("Покажи инструменты", frames);
    std::vector<std::string> types;
    for (const json& block : blocks)
        types.push_back(block["type"]);
    EXPECT_THAT(types, testing::ElementsAre("text", "search", "text", "artifact", "file_url"))
        << "what is said behind results goes on in the first text there";
    EXPECT_THAT(blocks[2]["text"], HasSubstr("рядом с разговором.\n\nГотово.")) << "as a paragraph of its own";
    EXPECT_EQ(frames.back(), json::parse(R"({"event":"end","data":{}})"));
}

TEST_F(ToolTest, AReconnectInTheMiddleRepeatsTheFramesOfTheTool) {
    TemporaryFolder other;
    ServiceProcess slow(other.path(), {"--demo-delay-ms", "2"});
    const std::string own = signIn(slow, "user@example.com");
    std::vector<json> before;
    {
        ChatClient first(slow.port(), own);
        first.send(createFrame("Артефакт Python"));
        while (before.empty() || only(before, "artifact").size() < 9)
            before.push_back(first.receive());
        first.cut();
    }
    ChatClient again(slow.port(), own);
    const auto after = again.receiveAnswer();
    const auto seen = only(before, "artifact");
    const auto repeated = only(after, "artifact");
    ASSERT_GT(repeated.size(), seen.size());
    EXPECT_TRUE(std::equal(seen.begin(), seen.end(), repeated.begin()));
    EXPECT_EQ(after.back()["event"], "end");
}

TEST_F(ToolTest, AStoppedOneLeavesNoPlaceholder) {
    TemporaryFolder other;
    ServiceProcess slow(other.path(), {"--demo-delay-ms", "5"});
    const std::string own = signIn(slow, "user@example.com");
    ChatClient watched(slow.port(), own);
    const auto stopAfter = [&](const std::string& question, const std::function<bool(const json&)>& isReached) {
        watched.send(createFrame(question));
        const long long chat = watched.receive()["data"]["id"];
        while (!isReached(watched.receive())) {
        }
        watched.send({{"event", "abort"}, {"data", {{"chatId", chat}}}});
        EXPECT_EQ(watched.receiveAnswer().back()["event"], "end");
        return request(slow.port(), "GET", "/chats/" + std::to_string(chat) + "/messages", {}, own)
            .body["data"][1]["content"];
    };
    const auto hasBegun = [](const json& frame) { return frame["event"] == "tool_start"; };
    const auto hasText = [](const json& frame) {
        return frame["event"] == "tool_call_args" && frame["data"]["args"].contains("text");
    };
    EXPECT_EQ(
        stopAfter("Нарисуй лес", hasBegun), json::parse(R"([{"type":"text","text":"Рисую по вашему описанию."}])"));
    EXPECT_EQ(stopAfter("Найди озеро", hasBegun).size(), 1U);
    const json half = stopAfter("Артефакт Python", hasText);
    ASSERT_EQ(half.size(), 2U);
    EXPECT_EQ(half[1]["id"], "demo-roads");
    EXPECT_EQ(half[1]["version"], 1);
    EXPECT_THAT(half[1]["text"].get<std::string>(), StartsWith("from dataclasses"));
}

TEST_F(ToolTest, AddressesFollowTheServiceToAnotherPort) {
    std::vector<json> frames;
    ask("Нарисуй море", frames);
    const long long chat = frames[0]["data"]["id"];
    service.signal(SIGTERM);
    service.wait();
    const ServiceProcess again(folder.path(), {"--public-url", "https://korvi.example/"});
    const json stored =
        request(again.port(), "GET", "/chats/" + std::to_string(chat) + "/messages", {}, token).body["data"];
    const std::string address = addressIn(stored[1]["content"][0]["text"]);
    EXPECT_THAT(address, StartsWith("https://korvi.example/files/"));
    EXPECT_EQ(fetch("http://127.0.0.1:" + std::to_string(again.port()) + address.substr(21)).status, 200);
}

TEST_F(ToolTest, LatexBecomesAPdf) {
    std::vector<json> frames;
    ask("Артефакт LaTeX", frames);
    const std::string path = "/chats/" + frames[0]["data"]["id"].dump() + "/artifacts/demo-squares/";
    const std::string base = "http://127.0.0.1:" + std::to_string(service.port()) + "/api/v1";
    const std::string authorization = "Authorization: Bearer " + token;
    for (const auto& wrong : std::vector<std::string>{path + "2/pdf", path + "x/pdf",
             "/chats/999/artifacts/demo-squares/1/pdf", "/chats/1/artifacts//1/pdf", path + "99999999999/pdf"})
        EXPECT_EQ(fetch(base + wrong, {authorization}).status, 404) << wrong;
    EXPECT_EQ(fetch(base + path + "1/pdf").status, 401);
    ask("Артефакт html", frames);
    EXPECT_EQ(
        fetch(base + "/chats/" + frames[0]["data"]["id"].dump() + "/artifacts/demo-counter/1/pdf", {authorization})
            .status,
        400);
    if (std::system("command -v pdflatex >/dev/null 2>&1") != 0) // NOLINT(concurrency-mt-unsafe)
        GTEST_SKIP() << "there is no pdflatex here";
    const auto pdf = fetch(base + path + "1/pdf", {authorization});
    EXPECT_EQ(pdf.status, 200) << pdf.body;
    EXPECT_EQ(pdf.headers.at("content-type"), "application/pdf");
    EXPECT_THAT(pdf.body, StartsWith("%PDF-"));
}

TEST_F(ToolTest, WithoutAnEngineThePdfIsRefusedInWords) {
    std::vector<json> frames;
    ask("Артефакт LaTeX", frames);
    service.signal(SIGTERM);
    service.wait();
    const std::string path = std::getenv("PATH"); // NOLINT(concurrency-mt-unsafe)
    ::setenv("PATH", folder.path().c_str(), 1);   // NOLINT(concurrency-mt-unsafe)
    const ServiceProcess poor(folder.path());
    ::setenv("PATH", path.c_str(), 1); // NOLINT(concurrency-mt-unsafe)
    const auto reply = request(
        poor.port(), "GET", "/chats/" + frames[0]["data"]["id"].dump() + "/artifacts/demo-squares/1/pdf", {}, token);
    EXPECT_EQ(reply.status, 501);
    EXPECT_THAT(reply.body["message"].get<std::string>(), HasSubstr("нет LaTeX"));
}

}
}
