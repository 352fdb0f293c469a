#include "Chat/AnswerFold.h"
#include "Printing.h"

#include <QJsonArray>

#include <gtest/gtest.h>

#include <random>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using Kind = AnswerFold::Kind;
using Content = std::vector<MessageContent>;

Content empty() {
    return {{MessageContent::Text{}}};
}

// "text(a) search text(b)"
QString told(const Content& content) {
    QStringList parts;
    for (const MessageContent& block : content) {
        if (const auto* text = block.as<MessageContent::Text>())
            parts.append(u"text("_s + text->text + u')');
        else if (const auto* thinking = block.as<MessageContent::Thinking>())
            parts.append(u"thinking("_s + thinking->text + u')');
        else if (block.as<WebSearchContent>())
            parts.append(u"search"_s);
        else
            parts.append(u"other"_s);
    }
    return parts.join(u' ');
}

TEST(AnswerFold, PiecesGoWhereTheyBelong) {
    struct Row {
        const char* what;
        Content before;
        Kind kind;
        QStringList pieces;
        QString after;
    };
    const MessageContent search{WebSearchContent{}};
    const MessageContent image{MessageContent::Generating{u"image"_s}};
    const auto text = [](const QString& words) { return MessageContent{MessageContent::Text{words}}; };
    const auto thinking = [](const QString& words) { return MessageContent{MessageContent::Thinking{words}}; };
    const std::vector<Row> rows{
        {"text grows the last text", {text(u"a"_s)}, Kind::text, {u"b"_s, u"c"_s}, u"text(abc)"_s},
        {"text behind reasoning begins a block", {thinking(u"t"_s)}, Kind::text, {u"b"_s}, u"thinking(t) text(b)"_s},
        {"reasoning grows the last reasoning", {thinking(u"a"_s)}, Kind::thinking, {u"b"_s}, u"thinking(ab)"_s},
        {"reasoning behind text begins a block", {text(u"a"_s)}, Kind::thinking, {u"b"_s}, u"text(a) thinking(b)"_s},
        {"text behind results, not before them", {text(u"a"_s), search}, Kind::text, {u"b"_s, u"c"_s},
            u"text(a) search text(bc)"_s},
        {"text of the newest results", {text(u"a"_s), search, text(u"b"_s), search, text(u"c"_s), image}, Kind::text,
            {u"d"_s}, u"text(a) search text(b) search text(cd) other"_s},
        {"ten characters that are there already are a repeat", {text(u"0123456789abc"_s)}, Kind::text,
            {u"123456789a"_s}, u"text(0123456789abc)"_s},
        {"nine may be meant", {text(u"0123456789abc"_s)}, Kind::text, {u"123456789"_s},
            u"text(0123456789abc123456789)"_s},
        {"characters are what a reader counts", {text(u"👍🏽👍🏽👍🏽👍🏽👍🏽"_s)}, Kind::text,
            {u"👍🏽👍🏽👍🏽👍🏽👍🏽"_s},
            u"text(👍🏽👍🏽👍🏽👍🏽👍🏽👍🏽👍🏽👍🏽👍🏽👍🏽)"_s},
        {"with a placeholder any repeat is dropped", {text(u"abc"_s), image}, Kind::text, {u"bc"_s},
            u"text(abc) other"_s},
        {"reasoning that ends the same way is a repeat", {thinking(u"01234567890123456789"_s)}, Kind::thinking,
            {u"0123456789"_s}, u"thinking(01234567890123456789)"_s},
        {"escapes become what they mean", {}, Kind::text, {uR"(a\nb\134n\134tc\134")"_s}, u"text(a\nb\n\tc\")"_s},
    };
    for (const Row& row : rows) {
        Content content = row.before;
        AnswerFold().fold(content, row.pieces, row.kind);
        EXPECT_EQ(told(content), row.after) << row.what;
    }
}

TEST(AnswerFold, TheViewIsToldAboutOnceIn300Characters) {
    AnswerFold fold;
    Content content = empty();
    int told = 0;
    std::mt19937 dice(1);
    for (int i = 0; i < 1000; ++i) {
        QString piece;
        for (int j = 0; j < 30; ++j)
            piece += QChar(u'а' + static_cast<char16_t>(dice() % 32));
        told += fold.fold(content, {piece}, Kind::text).follow ? 1 : 0;
    }
    EXPECT_NEAR(told, 30'000 / 300, 2);
}

TEST(AnswerFold, AReplayFromTheBeginningAddsOnlyWhatIsNew) {
    struct Row {
        const char* what;
        QStringList before;
        QStringList replay;
        QString after;
    };
    const std::vector<Row> rows{
        {"short pieces too", {u"Да"_s, u", "_s, u"да"_s}, {u"Да"_s, u", "_s, u"да"_s, u"!"_s}, u"Да, да!"_s},
        {"nothing new", {u"Да."_s}, {u"Да."_s}, u"Да."_s},
        {"other borders", {u"abc"_s, u"def"_s}, {u"ab"_s, u"cdefgh"_s}, u"abcdefgh"_s},
        {"a service that goes on instead", {u"abc"_s}, {u"def"_s, u"ghi"_s}, u"abcdefghi"_s},
        {"repeats in the text itself", {u"ха"_s, u"ха"_s}, {u"ха"_s, u"ха"_s, u"ха"_s}, u"хахаха"_s},
    };
    for (const Row& row : rows) {
        AnswerFold fold;
        Content content = empty();
        fold.fold(content, row.before, Kind::text);
        fold.beginReplay();
        for (const QString& piece : row.replay)
            fold.fold(content, {piece}, Kind::text);
        EXPECT_EQ(told(content), u"text("_s + row.after + u')') << row.what;
    }
}

// The service cuts an answer into pieces and sends it again after each loss of the line. However often that happens,
// and wherever, the answer is what was sent.
TEST(AnswerFold, AnyNumberOfReplaysGivesTheAnswerThatWasSent) {
    for (unsigned seed = 0; seed < 300; ++seed) {
        std::mt19937 dice(seed);
        const auto upTo = [&](unsigned bound) { return static_cast<qsizetype>(dice() % bound); };
        QStringList pieces;
        QString sent;
        const qsizetype count = 1 + upTo(40);
        while (pieces.size() < count) {
            QString piece;
            for (qsizetype length = 1 + upTo(24); length > 0; --length)
                piece += QChar(u'a' + static_cast<char16_t>(dice() % 3));
            // What is long and stands in the answer already, the service does not send as a piece of its own.
            if (piece.size() >= 10 && sent.contains(piece))
                continue;
            pieces.append(piece);
            sent += piece;
        }
        AnswerFold fold;
        Content content = empty();
        qsizetype received = 0;
        for (int losses = static_cast<int>(upTo(6)); losses >= 0; --losses) {
            const qsizetype until = losses == 0 ? pieces.size() : upTo(static_cast<unsigned>(pieces.size()) + 1);
            for (qsizetype i = 0; i < until;) {
                const qsizetype together = std::min(until - i, 1 + upTo(4));
                fold.fold(content, pieces.mid(i, together), Kind::text);
                i += together;
            }
            received = std::max(received, until);
            ASSERT_EQ(told(content), u"text("_s + pieces.mid(0, received).join(QString()) + u')') << "seed " << seed;
            fold.beginReplay();
        }
        ASSERT_EQ(told(content), u"text("_s + sent + u')') << "seed " << seed;
    }
}

}
}
