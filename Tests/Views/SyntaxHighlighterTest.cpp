#include "Markdown/SyntaxHighlighter.h"
#include "Markdown/CodeColouring.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <gmock/gmock.h>

#include <random>

namespace Korvi {

void PrintTo(const SyntaxHighlighter::Range& range, std::ostream* out) {
    *out << range.start << '+' << range.length << " token " << static_cast<int>(range.token)
         << (range.isBold ? " bold" : "");
}

void PrintTo(const PatternMatcher::Match& match, std::ostream* out) {
    *out << match.start << ".." << match.end;
}

namespace {

using Token = SyntaxHighlighter::Token;
using Range = SyntaxHighlighter::Range;

const QString languages[] = {"swift", "python", "tsx", "html", ""};

// What the rules are about, so that random texts are full of near misses.
const QString pieces[] = {"\"", "'", "\"\"\"", "\\", "\\\"", "\n", "\r\n", "\\\n", "#", "//", "/", "<", "</", "<!--",
    "-->", "-", "!", " ", "if", "iff", "return", "return_", "if2", "class", "def", "Int", "window", "1", "12", "1.5",
    ".", "3.14.15", "5x", "e", "_", "é", "слово", "٣", "²", "𝑥", "😀", "\u2028", "\t", "(", "a"};

QString randomText(std::mt19937& random, int length) {
    QString text;
    for (int i = 0; i < length; ++i)
        text += pieces[random() % std::size(pieces)];
    return text;
}

std::vector<PatternMatcher::Match> byExpression(QStringView pattern, const QString& text) {
    const QRegularExpression expression(
        pattern.toString(), QRegularExpression::MultilineOption | QRegularExpression::UseUnicodePropertiesOption);
    EXPECT_TRUE(expression.isValid()) << expression.errorString().toStdString();
    std::vector<PatternMatcher::Match> matches;
    for (auto all = expression.globalMatch(text); all.hasNext();) {
        const QRegularExpressionMatch match = all.next();
        matches.push_back({match.capturedStart(), match.capturedEnd()});
    }
    return matches;
}

// One letter for each character: its colour; a capital one is bold.
std::string coloursOf(const QString& code, const QString& language) {
    std::string letters(static_cast<std::size_t>(code.size()), '.');
    for (const Range& range : SyntaxHighlighter::highlight(code, language)) {
        letters.replace(static_cast<std::size_t>(range.start), static_cast<std::size_t>(range.length),
            static_cast<std::size_t>(range.length), (range.isBold ? "KSNCT" : "ksnct")[static_cast<int>(range.token)]);
    }
    return letters;
}

}

TEST(SyntaxHighlighter, MatchesAreThoseOfTheExpressions) {
    std::mt19937 random(20);
    for (const QString& language : languages) {
        const auto rules = SyntaxHighlighter::rulesForLanguage(language);
        const auto& compiled = SyntaxHighlighter::compiledRules(language);
        ASSERT_EQ(rules.size(), compiled.size());
        for (std::size_t i = 0; i < rules.size(); ++i) {
            for (int round = 0; round < 400; ++round) {
                const QString text = randomText(random, 1 + static_cast<int>(random() % 24));
                PatternMatcher::State state;
                std::vector<PatternMatcher::Match> matches;
                compiled[i].matcher.resume(text, state, matches);
                ASSERT_EQ(matches, byExpression(rules[i].pattern, text))
                    << rules[i].pattern.toUtf8().toStdString() << " in " << text.toStdString();
            }
        }
    }
}

TEST(SyntaxHighlighter, LaterRulesColourOverEarlierOnes) {
    struct Case {
        const char* language;
        const char* code;
        const char* colours;
    };
    const Case cases[] = {
        {"python", "x = \"a # b\" # c", "....ssssssscccc"}, // the rest of the line stays a comment
        {"Python", "# def x 12", "ccKKKcccnn"},
        {"swift", "let a: Int = 1.5 // if", "KKK....ttt...nnn.cccKK"},
        {"ts", "'it\\'s' + \"b", "sssssss....."}, // what is not closed is nothing
        {"html", "<a class=\"b\"><!-- if --></a>", "KK.ttttt.sss.cccccccccccKKK."},
        {"html", "<title><p \"<b\"", "KTTTTT.KK.sSSs"}, // the colour alone is another one
        {"", "def f # 2", "KKK...ccn"},
        {"cobol", "// if", "cccKK"},
        {"py", "\"\"\"a\nif\"\"\"", "sssssKKsss"},
    };
    for (const Case& one : cases) {
        const std::string expected = one.colours;
        const std::string colours = coloursOf(QString::fromUtf8(one.code), QString::fromUtf8(one.language));
        EXPECT_EQ(colours.substr(0, expected.size()), expected) << one.language << ": " << one.code;
    }
    EXPECT_EQ(&SyntaxHighlighter::compiledRules("Python"), &SyntaxHighlighter::compiledRules("python"));
}

// Appended piece by piece, closed now and then and going on after all.
TEST(SyntaxHighlighter, GrowingCodeHasTheColoursOfTheWhole) {
    std::mt19937 random(7);
    for (int round = 0; round < 600; ++round) {
        const QString& language = languages[random() % std::size(languages)];
        const QString text = randomText(random, 60);
        CodeColouring colouring(language);
        std::vector<Range> before;
        qsizetype length = 0;
        while (length < text.size()) {
            const qsizetype known = length;
            length = std::min(text.size(), length + 1 + static_cast<qsizetype>(random() % 9));
            const QString shown = text.first(length);
            const bool everything = random() % 4 == 0;
            const qsizetype from = colouring.advance(
                shown, everything ? CodeColouring::Extent::everything : CodeColouring::Extent::wholeLines);
            const QString taken = everything ? shown : shown.first(shown.lastIndexOf('\n') + 1);
            std::vector<Range> now = colouring.ranges(0, length);
            ASSERT_EQ(now, SyntaxHighlighter::highlight(taken, language)) << shown.toStdString();
            // Nothing before what it says is new has another colour.
            ASSERT_EQ(colouring.ranges(0, std::min(from, known)), [&] {
                std::vector<Range> kept;
                for (Range range : before) {
                    range.length = std::min(range.length, std::min(from, known) - range.start);
                    if (range.length > 0)
                        kept.push_back(range);
                }
                return kept;
            }()) << shown.toStdString();
            before = std::move(now);
        }
    }
}

TEST(SyntaxHighlighter, HostileCodeTakesTimeInProportion) {
    constexpr qsizetype length = 1 << 19; // a megabyte
    QElapsedTimer timer;
    timer.start();
    for (const char* unit : {"\"", "'", "\\", "\\\"", "\"\\", "\"\\\n", "<!--", "\"\"\"", "-", "1", "1.", "if", "a",
             "<", "#", "/", "\n", "\"a\\n"}) {
        const QString code = QString::fromUtf8(unit).repeated(length / static_cast<qsizetype>(std::strlen(unit)));
        for (const char* language : {"python", "html"}) // every shape is in one of them
            SyntaxHighlighter::highlight(code, QString::fromUtf8(language));
    }
    SyntaxHighlighter::highlight(QString(length, QChar(0xd800)), "python"); // halves of characters
    EXPECT_LT(timer.elapsed(), 60'000); // with sanitizers; squared it would be hours
}

}
