#include "Cleaners.h"
#include "Characters.h"
#include "SampleMarkdown.h"

#include <QFile>
#include <QRegularExpression>

#include <gmock/gmock.h>

using namespace Korvi::Markdown;

namespace {

using Cleaner = QString (*)(const QString&);
using Cases = std::vector<std::pair<const char*, const char*>>;

void expectCleaned(Cleaner cleaner, const Cases& cases) {
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(cleaner(text), QString(expected)) << text;
}

// What the machines stand for. "." stops at every line terminator of Unicode.
QString videosByExpression(QString text) {
    static const QRegularExpression tag(R"re((*ANY)<video[^>]*>.*?<source\s+src="([^"]+)"[^>]*/?>.*?</video>)re");
    return text.replace(tag, "\n\n[Видео](\\1)\n\n");
}

Cleaned citationsByExpression(const QString& text) {
    const Korvi::WebSearchAnswerItem item(text);
    return {item.cleanedText, item.citationSources};
}

QString fileLinksByExpression(const QString& text) {
    static const QRegularExpression link(R"((?:Файл готов к скачиванию:?\s*\n?)?\[([^\]]+)\]\((https?://[^\)]*)"
                                         R"((?:korvihub|static\.korvihub)[^\)]*)\))");
    QString without = text;
    without.remove(link);
    return without == text ? text : without.trimmed();
}

}

TEST(Cleaners, EmojisGoAndTextSignsStay) {
    expectCleaned(stripEmojis,
        {{"a 😀 b", "a b"}, {"→ ✓ ✅ ─ 漢 é", "→ ✓ ✅ ─ 漢 é"}, {"⌚ ⏳x ⭐y", "⌚ x y"}, {"❤️", "❤"},
            {"🇷🇺👍🏽.", "."}, {"a    b", "a  b"}, {"a   b", "a  b"}, {"   ", "  "}, {" 😀 😀 ", "  "},
            {"🀄\U00020000", "\U00020000"}});
    EXPECT_EQ(stripEmojis(QString(QChar(0xd83d)) + "a"), QString(QChar(0xd83d)) + "a")
        << "half a pair is not a picture";
}

TEST(Cleaners, EmojisAreThoseOfUnicode) {
    QFile data("/usr/share/unicode/emoji/emoji-data.txt");
    ASSERT_TRUE(data.open(QFile::ReadOnly)) << "of the package unicode-data";
    static const QRegularExpression line(
        R"(^([0-9A-F]+)(?:\.\.([0-9A-F]+))?\s*; Emoji_Presentation\s*# E(\d+))", QRegularExpression::MultilineOption);
    constexpr int ourUnicode = 15;
    int checked = 0;
    for (auto it = line.globalMatch(QString::fromUtf8(data.readAll())); it.hasNext();) {
        const auto range = it.next();
        const char32_t first = range.captured(1).toUInt(nullptr, 16);
        const char32_t last = range.hasCaptured(2) ? range.captured(2).toUInt(nullptr, 16) : first;
        if (range.captured(3).toInt() > ourUnicode) // the system's may be newer
            continue;
        for (char32_t scalar = first; scalar <= last; ++scalar, ++checked)
            ASSERT_TRUE(isEmoji(scalar)) << range.captured(0).toStdString();
    }
    int known = 0;
    for (char32_t scalar = 0; scalar < 0x110000; ++scalar)
        known += isEmoji(scalar);
    EXPECT_EQ(known, checked);
    EXPECT_GT(known, 1000);
}

TEST(Cleaners, VideoTagsBecomeLinks) {
    expectCleaned(cleanVideoTags,
        {{"a<video controls><source src=\"http://v.mp4\" type=\"x\"/></video>b", "a\n\n[Видео](http://v.mp4)\n\nb"},
            {"<video\n><source \n src=\"u\"\n>text</video>", "\n\n[Видео](u)\n\n"},
            {"<video>\n<source src=\"u\"></video>", "<video>\n<source src=\"u\"></video>"},
            {"<video><source src=\"\"></video>", "<video><source src=\"\"></video>"},
            {"<video><source><source src=\"u\"></video><video>", "\n\n[Видео](u)\n\n<video>"}});
}

TEST(Cleaners, CitationsAreCollectedAndTakenOut) {
    const Cleaned cleaned = cleanCitations(" Да [[2]](https://www.b.ru/x), нет [1](http://a)\n\n\n\n[3](http://a) и "
                                           "[123](http://c) [4](ftp://d)\n");
    EXPECT_EQ(cleaned.text, QString("Да , нет \n\n и [123](http://c) [4](ftp://d)"));
    EXPECT_THAT(cleaned.citations,
        testing::ElementsAre(CitationSource{1, "http://a", "a"}, CitationSource{2, "https://www.b.ru/x", "b.ru"}));
}

TEST(Cleaners, FileLinksGoWithTheirLead) {
    expectCleaned(cleanFileDownloadLinks,
        {{"a\nФайл готов к скачиванию: \n[f.pdf](https://static.korvihub.ru/f.pdf)\n", "a"},
            {"Файл готов к скачиванию [a](http://korvihub/x) b", "b"},
            {" [a](http://other.ru) ", " [a](http://other.ru) "}, {"[a [b](https://x.korvihub.ru)", ""},
            {"Файл готов к скачиванию: нет", "Файл готов к скачиванию: нет"}});
}

TEST(Cleaners, StatusLinesGo) {
    expectCleaned(cleanGenerationStatus,
        {{"a\n  Генерирую видео...\nb", "a\nb"}, {"Создаю изображение кота...", ""},
            {"Generating image... wait\n", "Generating image... wait\n"}, {"⏳ Создаю...\n\n", "\n"},
            {"\nGenerating video...", ""}, {"a\nГенерирую видео", "a\nГенерирую видео"}, {"", ""}});
}

TEST(Cleaners, TheMachinesFindWhatTheExpressionsFind) {
    Chance chance(5);
    for (int i = 0; i < 20'000; ++i) {
        QString text;
        for (qsizetype piece = chance.below(10); piece > 0; --piece) {
            constexpr QStringView pieces[] = {u"<video", u"<video>", u">", u"<source", u" ", u"\n", u"src=\"", u"\"",
                u"x", u"</video>", u"<source src=\"u\">", u"<"};
            text += pieces[chance.below(std::size(pieces))];
        }
        ASSERT_EQ(cleanVideoTags(text), videosByExpression(text)) << text.toStdString();
    }
    for (int i = 0; i < 20'000; ++i) {
        QString text;
        for (qsizetype piece = chance.below(10); piece > 0; --piece) {
            constexpr QStringView pieces[] = {u"[", u"]", u"(", u")", u"1", u"[1](http://", u"[[12]](https://", u"a",
                u"\n", u"\n\n", u" ", u"://", u"korvihub", u"](http://", u"Файл готов к скачиванию", u":", u"[[",
                u"]]"};
            text += pieces[chance.below(std::size(pieces))];
        }
        ASSERT_EQ(cleanCitations(text), citationsByExpression(text)) << text.toStdString();
        ASSERT_EQ(cleanFileDownloadLinks(text), fileLinksByExpression(text)) << text.toStdString();
    }
}

TEST(Cleaners, HaveOneOrder) {
    // The hourglass is a picture: it goes first, and the line is a status without it. A link in a video's tag is a file.
    EXPECT_EQ(clean("😀 Ответ\n⏳ Генерирую видео...\n<video><source src=\"https://korvihub/v\"></video>").text,
        QString("Ответ"));
}
