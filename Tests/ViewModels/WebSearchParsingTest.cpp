#include "Chat/WebSearchParsing.h"
#include "Chat/InlineCitations.h"

#include <QRegularExpression>

#include <gmock/gmock.h>

#include <random>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using Content = std::vector<MessageContent>;
using Text = MessageContent::Text;

QJsonObject json(const char* text) {
    return QJsonDocument::fromJson(text).object();
}

TEST(WebSearchParsing, TakesWhatIsUsableAndLeavesTheRest) {
    struct Row {
        const char* what;
        const char* body;
        const char* content; // as it is stored
    };
    const Row rows[]{
        {"nothing at all", R"({})", R"({"type":"search","query":"known"})"},
        {"the body's own query", R"({"query":"q"})", R"({"type":"search","query":"q"})"},
        {"parts of the wrong type", R"({"query":5,"results":{},"images":"x","answer":7,"responseTime":"fast"})",
            R"({"type":"search","query":"known"})"},
        {"an array of something else", R"({"results":[{"title":"a","url":"b"},1]})",
            R"({"type":"search","query":"known"})"},
        {"snippets, icons, and entries that lack something",
            R"({"results":[{"title":"a","url":"u","snippet":"s","favicon":"f"},{"title":"a"},{"url":"u"},
                {"title":"b","url":"v","content":"c","snippet":"s"}]})",
            R"({"type":"search","query":"known","results":[{"title":"a","url":"u","content":"s","favicon":"f"},
                {"title":"b","url":"v","content":"c"}]})"},
        {"images under both names", R"({"images":[{"url":"a","description":"d"},{"image_url":"b"},{"x":1}]})",
            R"({"type":"search","query":"known","images":[{"url":"a","description":"d"},{"url":"b"}]})"},
        {"answers with sources", R"({"answer":[{"sources":[]},{"text":"t","sources":[{"url":"u","index":1},{"url":"u"},
                {"index":2},{"url":"u","index":1.5}]},{"text":"v","sources":"x"}],"response_time":1.5})",
            R"({"type":"search","query":"known","answer":[{"text":"t","sources":[{"url":"u","index":1}]},
                {"text":"v"}],"responseTime":1.5})"},
    };
    for (const Row& row : rows) {
        const WebSearchContent content = WebSearchParsing::parseSearch(json(row.body), u"known"_s);
        EXPECT_EQ(QJsonDocument(content.toJson()).toJson().toStdString(),
            QJsonDocument(json(row.content)).toJson().toStdString())
            << row.what;
    }
}

TEST(InlineCitations, SourcesMoveFromTheTextIntoABlockOfTheirOwn) {
    Content content{{Text{u"Раз [[2]](https://www.b.example/x), два [1](http://a.example/y).\n\n\n\nТри "
                          u"[[7]](https://www.b.example/x)"_s}},
        {MessageContent::Thinking{u"[[3]](https://c.example)"_s}}, {Text{u" [9](https://d.example) "_s}}};
    ASSERT_TRUE(cleanInlineCitations(content));
    ASSERT_EQ(content.size(), 4U);
    EXPECT_EQ(content[0].as<Text>()->text, u"Раз , два .\n\nТри"_s);
    EXPECT_EQ(content[1].as<MessageContent::Thinking>()->text, u"[[3]](https://c.example)"_s);
    EXPECT_EQ(content[2].as<Text>()->text, QString());
    const auto* search = content[3].as<WebSearchContent>();
    ASSERT_TRUE(search);
    EXPECT_EQ(search->type, u"search"_s);
    EXPECT_FALSE(search->query);
    QStringList sources;
    for (const WebSearchResult& result : *search->results)
        sources.append(result.title + u' ' + result.url + u' ' + result.favicon.value_or(QString()));
    EXPECT_THAT(sources,
        testing::ElementsAre(
            u"a.example http://a.example/y https://www.google.com/s2/favicons?sz=32&domain=a.example"_s,
            u"b.example https://www.b.example/x https://www.google.com/s2/favicons?sz=32&domain=b.example"_s,
            u"d.example https://d.example https://www.google.com/s2/favicons?sz=32&domain=d.example"_s));
}

TEST(InlineCitations, WhatIsNoCitationStays) {
    for (const QString& text : {u"Просто текст.\n\n\n\nКонец "_s, u"[123](https://a.example)"_s, u"[1](ftp://a)"_s,
             u"[1](https://"_s, u"[слово](https://a.example)"_s, QString()}) {
        Content content{{Text{text}}};
        const Content before = content;
        EXPECT_FALSE(cleanInlineCitations(content)) << text.toStdString();
        EXPECT_EQ(content, before);
    }
}

TEST(InlineCitations, LinksToOwnFilesGoWithTheirWords) {
    struct Row {
        QString before;
        QString after;
    };
    const Row rows[]{
        {u"Готово.\n\nФайл готов к скачиванию:\n[отчёт.pdf](https://static.korvihub.com/a.pdf)\n\n\nКонец"_s,
            u"Готово.\n\n\nКонец"_s.replace(u"\n\n\n"_s, u"\n\n"_s)},
        {u"[a](https://x.korvihub.example/f) и [b](https://other.example/f)"_s, u"и [b](https://other.example/f)"_s},
        {u"Файл готов к скачиванию: [b](https://other.example/f)"_s,
            u"Файл готов к скачиванию: [b](https://other.example/f)"_s},
        {u"[a [b](https://korvihub.com/f)]"_s, u"]"_s},
        {u"[] [](https://korvihub.com/f)"_s, u"[] [](https://korvihub.com/f)"_s},
    };
    for (const Row& row : rows) {
        Content content{{Text{row.before}}};
        EXPECT_EQ(cleanInlineCitations(content), row.before != row.after) << row.before.toStdString();
        EXPECT_EQ(content.front().as<Text>()->text.toStdString(), row.after.toStdString());
        EXPECT_EQ(content.size(), 1U);
    }
}

// The walk by hand finds what the expression that it stands for finds.
TEST(InlineCitations, OwnLinksAreThoseOfTheExpression) {
    static const QRegularExpression links(
        uR"((?:Файл готов к скачиванию:\s*\n?)?\[([^\]]+)\]\((https?://[^\)]*(?:korvihub|static\.korvihub)[^\)]*)\))"_s);
    static const QRegularExpression gap(uR"(\n{3,})"_s);
    const QStringList parts{u"["_s, u"]"_s, u"]("_s, u"("_s, u")"_s, u"https://"_s, u"http://"_s, u"korvihub"_s, u"a"_s,
        u"\n"_s, u" "_s, u"Файл готов к скачиванию:"_s, u"[b](https://korvihub/c)"_s};
    std::mt19937 dice(7); // NOLINT: repeatable
    for (int round = 0; round < 20'000; ++round) {
        QString text;
        for (auto count = dice() % 14; count > 0; --count)
            text += parts.at(dice() % parts.size());
        QString expected = text;
        if (text.contains(links))
            expected = expected.remove(links).replace(gap, u"\n\n"_s).trimmed();
        Content content{{Text{text}}};
        cleanInlineCitations(content);
        ASSERT_EQ(content.front().as<Text>()->text.toStdString(), expected.toStdString()) << text.toStdString();
    }
}

}
}
