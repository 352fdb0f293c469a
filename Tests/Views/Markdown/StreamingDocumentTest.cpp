#include "ChangeCheck.h"
#include "SampleMarkdown.h"
#include "Segments.h"
#include "Written.h"

#include <gmock/gmock.h>

using namespace Korvi::Markdown;

namespace {

// A document that is compared with the whole text parsed from scratch after each step.
class CheckedDocument {
public:
    void append(QStringView piece) {
        check([&] { return document.append(piece); }, document.text() + piece.toString());
    }
    void setText(const QString& text) {
        check([&] { return document.setText(text); }, text);
    }
    void settle() { document.settle(); }

    const QString& text() const { return document.text(); }
    const std::vector<Segment>& segments() const { return document.segments(); }
    const Change& lastChange() const { return change; }

private:
    template <class Step>
    void check(Step step, const QString& expectedText) {
        const std::vector<Segment> before = document.segments();
        const std::vector<CitationSource> citationsBefore = document.citations();
        change = step();
        const Cleaned cleaned = clean(expectedText);
        bool isTailOpen = false;
        const std::vector<Segment> expected = groupBlocksIntoSegments(cleaned.text, &isTailOpen);
        ASSERT_EQ(document.text(), expectedText);
        ASSERT_EQ(writtenAll(document.segments()), writtenAll(expected)) << expectedText.toStdString();
        ASSERT_EQ(document.segments(), expected) << expectedText.toStdString();
        ASSERT_EQ(document.isTailOpen(), isTailOpen) << expectedText.toStdString();
        ASSERT_EQ(document.citations(), cleaned.citations);
        ASSERT_EQ(change.citationsChanged, cleaned.citations != citationsBefore);
        ASSERT_EQ(faultOf(change, before, document.segments()), QString())
            << expectedText.toStdString() << "\nfrom " << change.firstChangedSegment << ", removed " << change.removed
            << ", added " << change.added << ", kept " << change.kept << " + " << change.keptCharacters;
    }

    StreamingDocument document;
    Change change;
};

void stream(const QString& text, Chance& chance, qsizetype longestPiece) {
    CheckedDocument document;
    for (qsizetype at = 0; at < text.size();) {
        const qsizetype length = std::min(text.size() - at, 1 + chance.below(longestPiece));
        ASSERT_NO_FATAL_FAILURE(document.append(QStringView(text).sliced(at, length)));
        at += length;
    }
}

}

TEST(StreamingDocument, EqualsTheWholeTextWhateverItsPieces) {
    for (unsigned seed = 0; seed < 400; ++seed) {
        Chance chance(seed);
        const QString text = chance.answer(40);
        ASSERT_NO_FATAL_FAILURE(stream(text, chance, seed % 3 == 0 ? 1 : 20)) << "seed " << seed;
    }
}

TEST(StreamingDocument, EqualsTheWholeTextOfHostileCharacters) {
    for (const QStringView alphabet :
        {u"$\n` a-|", u"[]()1: \nhtp/", u"*`_ a\n", u"**``абв \n![$", u"|-\n a:", u"![](a\n)$", u" \n\r\t.a"}) {
        for (unsigned seed = 0; seed < 150; ++seed) {
            Chance chance(seed);
            const QString text = chance.text(alphabet, 60);
            ASSERT_NO_FATAL_FAILURE(stream(text, chance, 4)) << "seed " << seed << alphabet.toUtf8().constData();
        }
    }
}

// Longer than the distance between bookmarks, with ends that take back what was shown far before.
TEST(StreamingDocument, TakesBackWhatALateEndChanges) {
    const QString filler = QString("Абзац из слов, и ещё *слова*.\n\n- пункт\n```c\nint x;\n```\n").repeated(60);
    Chance chance(3);
    for (const QString& text : {"<video " + filler + "><source src=\"http://v\"></video> хвост",
             "[1](http://a" + QString(filler).remove(')') + ") хвост", "[" + filler + "](http://korvihub.ru) хвост",
             "```\n" + filler.left(1500) + "\n[1](http://a\n```\nb\n```\n) ещё\n```\nв",
             filler + "Генерирую видео" + QString(" и слова").repeated(400) + "...",
             filler + QString(2000, '\n') + "x"}) {
        CheckedDocument document;
        // Large pieces in the middle: comparing each with the whole takes its time.
        for (qsizetype at = 0; at < text.size();) {
            const bool isEdge = at < 40 || text.size() - at < 80;
            const qsizetype length = std::min(text.size() - at, isEdge ? 1 + chance.below(3) : 150 + chance.below(100));
            ASSERT_NO_FATAL_FAILURE(document.append(QStringView(text).sliced(at, length)));
            at += length;
        }
    }
}

TEST(StreamingDocument, TakesAnyTextInsteadOfAnother) {
    Chance chance(11);
    for (int round = 0; round < 200; ++round) {
        CheckedDocument document;
        for (int step = 0; step < 8; ++step) {
            const QString text = document.text();
            switch (chance.below(5)) {
            case 0: document.setText(chance.answer(10)); break;
            case 1: document.setText(text.left(chance.below(text.size() + 1))); break;
            case 2: document.settle(); break;
            default: document.setText(text + chance.answer(6));
            }
            ASSERT_FALSE(HasFatalFailure());
        }
    }
}

TEST(StreamingDocument, TellsWhatAGrowingEndKeeps) {
    CheckedDocument document;
    document.append(u"# A\n\nраз **два");
    document.append(u"** три");
    EXPECT_EQ(document.lastChange(), (Change{.continues = true, .kept = 1, .keptCharacters = 4}))
        << "bold begins there";
    document.append(u" четыре");
    EXPECT_EQ(document.lastChange(), (Change{.continues = true, .kept = 1, .keptCharacters = 11}));
    document.append(u"\n- пять");
    EXPECT_EQ(document.lastChange(), (Change{.continues = true, .kept = 2}));
    document.append(u"\n```c\nint");
    EXPECT_EQ(document.lastChange(), (Change{.firstChangedSegment = 1, .added = 1}));
    document.append(u" x;\n\n");
    EXPECT_EQ(document.lastChange(), (Change{.firstChangedSegment = 1, .continues = true, .kept = 3}));
    document.append(u"y\n```\nшесть");
    EXPECT_EQ(document.lastChange(), (Change{.firstChangedSegment = 1, .added = 1, .continues = true, .kept = 6}));
    document.append(u"\n\n|a|\n|-|\n|1|\n|2");
    EXPECT_EQ(document.lastChange(), (Change{.firstChangedSegment = 3, .added = 1}));
    document.append(u"3|\n|4|");
    EXPECT_EQ(document.lastChange(), (Change{.firstChangedSegment = 3, .continues = true, .kept = 1}));
    document.append(u"\n");
    EXPECT_TRUE(document.lastChange().isEmpty());
}
