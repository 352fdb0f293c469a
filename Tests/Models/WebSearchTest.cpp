#include "Printing.h"
#include "WebSearchContent.h"

#include <gmock/gmock.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;

TEST(WebSearch, TheDomainIsTheHostWithoutWww) {
    struct Row {
        QString url;
        QString domain;
    };
    for (const Row& row : {
             Row{u"https://www.example.org/a?b#c"_s, u"example.org"_s},
             Row{u"https://news.example.org:8443/"_s, u"news.example.org"_s},
             Row{u"HTTPS://WWW.Example.ORG"_s, u"example.org"_s},
             Row{u"https://пример.рф/путь"_s, u"пример.рф"_s},
             Row{u"example.org/a"_s, u"example.org/a"_s},
             Row{u"not a url"_s, u"not a url"_s},
             Row{QString(), QString()},
         }) {
        EXPECT_EQ(domainOf(row.url), row.domain) << row.url.toStdString();
    }
}

TEST(WebSearch, CitationsAreLiftedOutOfTheText) {
    struct Row {
        const char* text;
        const char* cleaned;
        const char* sources; // index=url, sorted by index
    };
    for (const Row& row : {
             Row{"без ссылок", "без ссылок", ""},
             Row{"Да [[1]](https://www.a.org/x).", "Да .", "1=https://www.a.org/x"},
             Row{"Да [1](http://a.org) и [2](https://b.org)", "Да  и", "1=http://a.org 2=https://b.org"},
             Row{"[[2]](https://b.org)[[1]](https://a.org)", "", "1=https://a.org 2=https://b.org"},
             Row{"[[3]](https://a.org) x [[1]](https://a.org)", "x", "3=https://a.org"},
             Row{"[[100]](https://a.org)", "[[100]](https://a.org)", ""},
             Row{"[[1]](ftp://a.org)", "[[1]](ftp://a.org)", ""},
             Row{"[текст](https://a.org)", "[текст](https://a.org)", ""},
             Row{"a\n\n\n\nb\n\nc\n[[1]](https://a.org)\n\nd", "a\n\nb\n\nc\n\nd", "1=https://a.org"},
             Row{"\n \t x \n", "x", ""},
         }) {
        const WebSearchAnswerItem item(QString::fromUtf8(row.text));
        QStringList sources;
        for (const auto& source : item.citationSources)
            sources.append(u"%1=%2"_s.arg(source.index).arg(source.url));
        EXPECT_EQ(item.cleanedText, QString::fromUtf8(row.cleaned)) << row.text;
        EXPECT_EQ(sources.join(u' '), QString::fromUtf8(row.sources)) << row.text;
        EXPECT_EQ(item.text, QString::fromUtf8(row.text));
    }
    EXPECT_EQ(WebSearchAnswerItem(u"[[1]](https://www.a.org/x)"_s).citationSources.at(0).domain, u"a.org"_s);
}

TEST(WebSearch, AMemberOfAnotherShapeCountsAsAbsentAndTheRestStays) {
    const QByteArray good = R"({"type":"search","query":"q","responseTime":1.5,
        "answer":[{"text":"t","sources":[{"url":"u","index":1}]}],
        "results":[{"title":"t","url":"u","content":"c"}],"images":[{"url":"u"}]})";
    const auto whole = decodeJson<WebSearchContent>(good);
    EXPECT_EQ(decodeJson<WebSearchContent>(QJsonDocument(whole.toJson()).toJson()), whole);
    const QJsonObject object = QJsonDocument::fromJson(good).object();
    for (const QString& key : object.keys()) {
        for (const QJsonValue& bad : {QJsonValue(), QJsonValue(QJsonArray{7}), QJsonValue(true)}) {
            QJsonObject damaged = object;
            damaged.insert(key, bad);
            QJsonObject expected = object;
            expected.remove(key);
            EXPECT_EQ(WebSearchContent::fromJson(JsonReader(damaged)).toJson(), expected) << key.toStdString();
        }
    }
}

}
}
