// The parsers and folds behind tools and uploads, each by itself.
#include "Chat/AnswerContent.h"
#include "Chat/Frames.h"
#include "Core/Confinement.h"
#include "Core/Json.h"
#include "Http/MultipartParser.h"
#include "Tools/ArgumentStream.h"
#include "Tools/TextFile.h"
#include "Tools/ToolCall.h"
#include "Tools/Typesetter.h"

#include <fstream>
#include <gtest/gtest.h>
#include <random>

namespace korvi::service {
namespace {

using nlohmann::json;

/// Splits at random places and hands the parts on.
template <class Take>
void inPieces(std::string_view text, std::mt19937& random, Take take) {
    while (!text.empty()) {
        const auto size = std::uniform_int_distribution<std::size_t>(1, std::min<std::size_t>(9, text.size()))(random);
        take(text.substr(0, size));
        text.remove_prefix(size);
    }
}

TEST(ArgumentStream, GivesTheStringsOfAnObjectHoweverItIsSplit) {
    const std::vector<std::pair<std::string, std::map<std::string, std::string>>> cases{
        {R"({"a":"x","b":"y"})", {{"a", "x"}, {"b", "y"}}},
        {R"( { "a" : "с \"кавычкой\" и \\ \/ \n\t" , "n" : 12.5e3 , "b":"" } )",
            {{"a", "с \"кавычкой\" и \\ / \n\t"}, {"b", ""}}},
        {R"({"deep":{"a":"нет","l":["}",{"\"":1}]},"yes":true,"a":"да"})", {{"a", "да"}}},
        {R"({"a":"\u041f\u0440\ud83d\ude00\u0000!","\u0062":"k"})", {{"a", "Пр😀!"}, {"b", "k"}}},
        {R"({"a":"\ud83dx\ude00\ud83d"})", {{"a", "\xEF\xBF\xBDx\xEF\xBF\xBD\xEF\xBF\xBD"}}},
        {R"({})", {}},
    };
    std::mt19937 random(7);
    for (const auto& [text, expected] : cases) {
        for (int round = 0; round < 50; ++round) {
            ArgumentStream stream;
            std::map<std::string, std::string> got;
            std::size_t ended = 0;
            inPieces(text, random, [&](std::string_view piece) {
                for (const auto& part : stream.feed(piece)) {
                    got[part.key] += part.text;
                    ended += part.ends ? 1 : 0;
                }
            });
            EXPECT_EQ(got, expected) << text;
            EXPECT_EQ(ended, expected.size());
            EXPECT_TRUE(stream.isComplete()) << text;
        }
    }
    for (const char* broken :
        {"x", "[1]", R"({a:1})", R"({"a" 1})", R"({"a":"\x"})", R"({"a":"\u12g4"})", R"({"a":1]})"}) {
        ArgumentStream stream;
        stream.feed(broken);
        EXPECT_TRUE(stream.isBroken()) << broken;
    }
}

TEST(ToolCallCollector, UnderstandsTheWaysInWhichServersWriteCalls) {
    struct Case {
        const char* what;
        std::vector<const char*> deltas;
        std::vector<std::pair<std::string, std::string>> calls;
    };
    for (const Case& each :
        std::vector<Case>{
            {"an index with each delta",
                {R"([{"index":0,"id":"a","function":{"name":"x","arguments":"{"}}])",
                    R"([{"index":1,"id":"b","function":{"name":"y","arguments":"[]"}},{"index":0,"function":{"arguments":"}"}}])"},
                {{"x", "{}"}, {"y", "[]"}}},
            {"an identifier with each delta",
                {R"([{"index":0,"id":"a","function":{"name":"x","arguments":"{"}}])",
                    R"([{"index":0,"id":"a","function":{"name":"","arguments":"}"}}])"},
                {{"x", "{}"}}},
            {"no index",
                {R"([{"id":"a","function":{"name":"x","arguments":"{"}}])", R"([{"function":{"arguments":"}"}}])",
                    R"([{"id":"b","function":{"name":"y","arguments":"{}"}}])"},
                {{"x", "{}"}, {"y", "{}"}}},
            {"index 0 for all",
                {R"([{"index":0,"id":"a","function":{"name":"x","arguments":"{}"}}])",
                    R"([{"index":0,"id":"b","function":{"name":"y","arguments":"{}"}}])"},
                {{"x", "{}"}, {"y", "{}"}}},
            {"an object", {R"([{"function":{"name":"x","arguments":{"q":"я"}}}])"}, {{"x", R"({"q":"я"})"}}},
            {"nonsense", {R"([1,null,{"index":"x"},{"function":7}])", R"({"index":0})"}, {{"", ""}}}}) {
        ToolCallCollector collector;
        for (const char* delta : each.deltas)
            collector.take(json::parse(delta));
        std::vector<std::pair<std::string, std::string>> calls;
        for (const ToolCall& call : collector.calls())
            calls.emplace_back(call.name, call.arguments);
        EXPECT_EQ(calls, each.calls) << each.what;
    }
}

TEST(MultipartParser, FindsTheFileHoweverTheBodyIsSplit) {
    const std::string content = "\r\n--b\r\n--bound\r\n-\r--\r\n\r\n--boundar\0y" + std::string(40, '-') + "\r\n";
    const std::string body = "preamble\r\n--boundary \r\nContent-Disposition: form-data; name=\"other\"\r\n\r\nnot this"
                             "\r\n--boundary\r\nContent-Type: text/x; a=b\r\ncontent-disposition: form-data; "
                             "filename=\"a \\\"b\\\".txt\"; NAME=\"file\"\r\nX: y\r\n\r\n" +
        content +
        "\r\n--boundary\r\nContent-Disposition: form-data; name=\"file\"\r\n\r\na second "
        "one\r\n--boundary--\r\nepilogue";
    std::mt19937 random(3);
    for (int round = 0; round < 100; ++round) {
        std::string got;
        MultipartParser::Part part;
        MultipartParser parser("boundary", "file",
            {[&](const MultipartParser::Part& found) { part = found; },
                [&](std::string_view bytes) {
                    got += bytes;
                    return true;
                }});
        inPieces(body, random, [&](std::string_view piece) { EXPECT_TRUE(parser.feed(piece)); });
        EXPECT_TRUE(parser.isComplete());
        EXPECT_EQ(got, content);
        EXPECT_EQ(part.filename, "a \"b\".txt");
        EXPECT_EQ(part.type, "text/x; a=b");
    }
    for (const auto& [type, boundary] : std::vector<std::pair<std::string, std::optional<std::string>>>{
             {"multipart/form-data; boundary=x", "x"}, {"Multipart/Form-Data;charset=utf-8; Boundary=\"a b\"", "a b"},
             {"multipart/form-data", std::nullopt}, {"application/json; boundary=x", std::nullopt},
             {"multipart/form-data; boundary=" + std::string(300, 'x'), std::nullopt}})
        EXPECT_EQ(multipartBoundary(type), boundary) << type;
}

Piece text(const std::string& body) {
    return {PieceKind::text, body};
}
Piece tool(const std::string& frame) {
    return {PieceKind::tool, frame};
}

TEST(AnswerContent, IsWhatAClientShowsThatSawItStream) {
    const auto image = [](const char* url) { return tool(frames::toolEnd("generateImage", {{"imageUrl", url}})); };
    const auto search = tool(frames::toolEnd("web_search", {{"query", "q"}}));
    struct Case {
        const char* what;
        std::vector<Piece> pieces;
        const char* content;
    };
    for (const Case& each :
        std::vector<Case>{{"a picture joins the text before it, and the text goes on behind it",
                              {text("A"), image("u"), text("B")}, R"j([{"type":"text","text":"A\n\n![image](u)B"}])j"},
            {"the same picture once", {text("A"), image("u"), image("u")},
                R"j([{"type":"text","text":"A\n\n![image](u)"}])j"},
            {"a picture joins the last text, whatever stands behind that", {text("A"), search, image("u")},
                R"j([{"type":"text","text":"A\n\n![image](u)"},{"type":"search","query":"q"}])j"},
            {"a picture before any word stands in the text that the answer begins with",
                {{PieceKind::thinking, "T"}, image("u"), text("B")},
                R"j([{"type":"text","text":"\n\n![image](u)"},{"type":"thinking","text":"T"},{"type":"text","text":"B"}])j"},
            {"text behind results gathers in the first text there",
                {text("A"), search, text("B"), tool(frames::toolEnd("video", {{"videoUrl", "v"}})), text("C")},
                R"j([{"type":"text","text":"A"},{"type":"search","query":"q"},{"type":"text","text":"BC"},
                     {"type":"video_url","videoUrl":"v"}])j"},
            {"what has not finished leaves nothing",
                {text("A"), tool(frames::toolStart("generateImage")), tool(frames::toolProgress("generateImage")),
                    tool(frames::toolStart("artifact")), tool(frames::toolArguments("artifact", {{"id", "x"}})),
                    tool("nonsense"), tool("{}")},
                R"j([{"type":"text","text":"A"}])j"},
            {"nor does a document without a file", {text("A"), tool(frames::toolEnd("createDocument", json::object()))},
                R"j([{"type":"text","text":"A"}])j"},
            {"the reason of a failure is a text of its own",
                {text("A"), tool(frames::toolEnd("generateImage", {{"text", "E"}})), text("B")},
                R"j([{"type":"text","text":"A"},{"type":"text","text":"EB"}])j"}})
        EXPECT_EQ(contentOf(each.pieces, AnswerState::done), json::parse(each.content)) << each.what;
}

TEST(AnswerContent, GathersCitationsOfAWholeAnswerOnly) {
    const std::vector<Piece> pieces{text("Б [2](https://www.b.ru/x) а [[1]](http://a.ru)[[3]](http://a.ru).\n\n\n\n"
                                         "[[123]](http://c.ru) [x](http://d.ru) [1](ftp://e.ru) [4](http://)")};
    EXPECT_EQ(contentOf(pieces, AnswerState::aborted), json::array({{{"type", "text"}, {"text", pieces[0].body}}}));
    const json blocks = contentOf(pieces, AnswerState::done);
    EXPECT_EQ(blocks[0]["text"], "Б  а .\n\n[[123]](http://c.ru) [x](http://d.ru) [1](ftp://e.ru) [4](http://)");
    EXPECT_EQ(blocks[1], json::parse(R"({"type":"search","results":[
        {"title":"a.ru","url":"http://a.ru","content":"","favicon":"https://www.google.com/s2/favicons?sz=32&domain=a.ru"},
        {"title":"b.ru","url":"https://www.b.ru/x","content":"","favicon":"https://www.google.com/s2/favicons?sz=32&domain=b.ru"}]})"));
}

TEST(AnswerContent, TakesNoLongerForBracketsThatStayOpen) {
    std::string open;
    std::string cited;
    for (int i = 0; i < 60'000; ++i) {
        open += "[1](http://a ";
        cited += "[1](http://" + std::to_string(i) + ")";
    }
    // With quadratic time the test's limit would find it.
    EXPECT_EQ(contentOf({text(open)}, AnswerState::done)[0]["text"], open);
    EXPECT_EQ(contentOf({text(cited)}, AnswerState::done).back()["results"].size(), 60'000U);
}

TEST(TextFile, IsReadInTheEncodingThatItIsIn) {
    using namespace std::string_literals;
    for (const auto& [bytes, text] : std::vector<std::pair<std::string, std::string>>{{"Привет, мир", "Привет, мир"},
             {"\xEF\xBB\xBFПривет", "Привет"}, {"\xFF\xFE\x1F\x04\x40\x04!\0"s, "Пр!"},
             {"\xFE\xFF\x04\x1F\x04\x40\xD8"s, "Пр"}, {"\xCF\xF0\xE8\xE2\xE5\xF2, 5\x98\xB9", "Привет, 5\xEF\xBF\xBD№"},
             {"Привет, \xFF!", "Привет, \xFF!"}, {"обрыв: \xD0", "обрыв: \xD0"}, {"", ""}})
        EXPECT_EQ(textOfFile(bytes), text);
    std::string large;
    for (int i = 0; i < 10'000; ++i)
        large += "\xE0\xE1\xE2 ";
    EXPECT_EQ(textOfFile(large).size(), 70'000U);
}

Typeset typeset(const std::string& source, std::chrono::seconds time = std::chrono::seconds(30)) {
    asio::io_context io;
    Typesetter typesetter(io, time);
    Typeset result;
    const auto run = typesetter.typeset(source, [&](Typeset made) { result = std::move(made); });
    io.run();
    return result;
}

TEST(Typesetter, TakesDocumentsAndFragments) {
    if (!findProgram("pdflatex"))
        GTEST_SKIP() << "there is no pdflatex here";
    const auto whole = typeset("\\documentclass{article}\n\\begin{document}\n\\tableofcontents\\section{Привет, мир}"
                               "\\label{a}Раздел \\ref{a}\n\\end{document}\n");
    EXPECT_TRUE(whole.pdf.starts_with("%PDF-")) << whole.error;
    EXPECT_TRUE(typeset("Формула: $x^2$, и всё.").pdf.starts_with("%PDF-"));
    const auto faulty = typeset("\\documentclass{article}\\begin{document}\\nonsense\\end{document}");
    EXPECT_EQ(faulty.pdf, "");
    EXPECT_TRUE(faulty.error.ends_with("ошибка LaTeX — Undefined control sequence.")) << faulty.error;
    EXPECT_NE(typeset("\\documentclass{article}\\begin{document}\\end{document}").error.find("ни одной страницы"),
        std::string::npos);
}

TEST(Typesetter, LetsNoDocumentReachBeyondItsFolder) {
    if (!findProgram("pdflatex"))
        GTEST_SKIP() << "there is no pdflatex here";
    const ScratchFolder folder;
    const auto secret = folder.path() / "secret.tex";
    const auto trace = folder.path() / "trace";
    std::ofstream(secret) << "secret";
    for (const std::string& hostile :
        {"\\input{" + secret.string() + "}", "\\immediate\\write18{touch " + trace.string() + "}text",
            "\\newwrite\\f\\immediate\\openout\\f=" + trace.string() + " \\immediate\\write\\f{x}text",
            "\\input{|touch " + trace.string() + "}", std::string("\\input{../x}"), std::string("\\input{.hidden}")}) {
        const auto result = typeset(hostile);
        EXPECT_FALSE(std::filesystem::exists(trace)) << hostile;
        if (hostile.find("input") != std::string::npos) {
            EXPECT_NE(result.error, "") << hostile;
        }
    }
    // Ways that the engines' own settings leave open.
    const auto program = [](const std::string& code) {
        return typeset(
            "\\documentclass{article}% fontspec\n\\begin{document}\\directlua{" + code + "}x\\end{document}");
    };
    program("pcall(function() io.open('" + trace.string() + "', 'w'):write('x') end)");
    EXPECT_FALSE(std::filesystem::exists(trace));
    if (Confinement::isAvailable()) {
        EXPECT_TRUE(!findProgram("lualatex") || program("tex.print(1)").error.empty()) << "it works as such";
        EXPECT_NE(program("if io.open('" + secret.string() + "') == nil then error('closed') end").error, "");
        const auto embedded = typeset("\\documentclass{article}\\pdfcompresslevel=0\\begin{document}x"
                                      "\\immediate\\pdfobj stream file {" +
            secret.string() + "}\\pdfrefobj\\pdflastobj\\end{document}");
        EXPECT_EQ(embedded.pdf.find("secret"), std::string::npos);
    }
    EXPECT_NE(typeset("\\def\\a{\\a}\\a", std::chrono::seconds(1)).error, "");
    EXPECT_NE(typeset("\\def\\a{x\\a\\a}\\setbox0\\hbox{\\a}", std::chrono::seconds(5)).error, "");
}

}
}
