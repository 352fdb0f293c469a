#include "Inline.h"
#include "SampleMarkdown.h"
#include "Written.h"

#include <QRegularExpression>

#include <gmock/gmock.h>

using namespace Korvi::Markdown;

namespace {

std::string parts(const char* text) {
    std::string all;
    bool hasFormula = false;
    for (const TextPart& part : parseInlineLatex(QString(text))) {
        all += (part.isLatex ? "F{" : "{") + part.content.toStdString() + "}";
        hasFormula = hasFormula || part.isLatex;
    }
    EXPECT_EQ(hasInlineLatex(QString(text)), hasFormula) << text;
    return all;
}

// What the scanner by hand stands for.
std::vector<Run> runsByExpression(const QString& raw) {
    static const QRegularExpression markers(R"((*ANY)(\*\*(.+?)\*\*)|((?<!\*)\*([^\*]+?)\*(?!\*))|(`([^`]+?)`))");
    const QString text = stripUnclosedMarkers(raw);
    std::vector<Run> runs;
    const auto add = [&](const QString& piece, Style style) {
        if (!piece.isEmpty())
            runs.push_back({piece, style});
    };
    qsizetype written = 0;
    for (auto it = markers.globalMatch(text); it.hasNext();) {
        const auto found = it.next();
        add(text.sliced(written, found.capturedStart() - written), Style::base);
        const int group = found.hasCaptured(2) ? 2 : found.hasCaptured(4) ? 4 : 6;
        add(found.captured(group), group == 2 ? Style::bold : group == 4 ? Style::italic : Style::code);
        written = found.capturedEnd();
    }
    add(text.sliced(written), Style::base);
    return runs;
}

std::vector<Run> runsInTwo(const std::vector<Run>& begun, const SettledInline& settled, const QString& rest) {
    std::vector<Run> all(begun.begin(), begun.begin() + settled.runs);
    all.push_back({begun[std::size_t(settled.runs)].text.first(settled.inRun), Style::base});
    for (const Run& run : parseInlineMarkdown(rest)) {
        if (run.style == Style::base && all.back().style == Style::base)
            all.back().text += run.text;
        else
            all.push_back(run);
    }
    return all;
}

}

TEST(InlineLatex, FormulasAndWhatOnlyLooksLikeThem) {
    const std::pair<const char*, const char*> cases[] = {
        {"", ""},
        {"plain", "{plain}"},
        {"a $x$ b", "{a }F{x}{ b}"},
        {"$x$$y$", "{$$}F{xy}"}, // two in a row are text even there: the formula goes on
        {"$5 and more", "{$5 and more}"},
        {"$5 or $6", "F{5 or }{6}"},
        {"a $$b$$ c", "{a $$b$$ c}"},
        {"$x$ and $y", "F{x}{ and }{$y}"},
        {"$x$ and 5$", "F{x}{ and 5}{$}"},
        {"$x $$ y$", "{$$}F{x  y}"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(parts(text), expected) << text;
}

TEST(UnclosedMarkers, AreNotShownWhileTextStreams) {
    const std::pair<const char*, const char*> cases[] = {
        {"a **b", "a b"},
        {"a **b** **c", "a **b** c"},
        {"a *b", "a b"},
        {"a `b", "a b"},
        {"`a` `", "`a` "},
        {"***a", "a"},
        {"***a***", "***a***"},
        {"**a `b", "a b"},
        {"*`*", "**"}, // counted as it stands without the backtick
        {"a * b", "a  b"},
        {"**a**", "**a**"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(stripUnclosedMarkers(text), QString(expected)) << text;
}

TEST(InlineMarkdown, Runs) {
    const std::pair<const char*, const char*> cases[] = {
        {"a **b** *c* `d` e", "{a }B{b}{ }I{c}{ }C{d}{ e}"},
        {"**bold", "{bold}"},
        {"****", "{****}"},
        {"`a*b*`", "C{a*b*}"},
        {"2 * 3 * 4", "{2 }I{ 3 }{ 4}"},
        {"[a](b)", "{[a](b)}"},
        {"**a *b* c**", "B{a *b* c}"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(written(parseInlineMarkdown(text)), expected) << text;
}

TEST(InlineMarkdown, TheScannerFindsWhatTheExpressionFinds) {
    Chance chance(7);
    for (int i = 0; i < 30'000; ++i) {
        const QString text = chance.text(u"*`* a\u2028`*", 12);
        ASSERT_EQ(written(parseInlineMarkdown(text)), written(runsByExpression(text))) << text.toStdString();
    }
}

// Whatever comes behind it, a settled beginning and the rest may be parsed one by one.
TEST(InlineMarkdown, ASettledBeginningStaysAsItIs) {
    Chance chance(8);
    int settledOnes = 0;
    for (int i = 0; i < 30'000; ++i) {
        const QString text = chance.text(u"**` aбв!", 16);
        const QString more = chance.text(u"*`* a\u2028`*", 8);
        SettledInline settled;
        const auto runs = parseInlineMarkdown(text, &settled);
        if (settled.length == 0)
            continue;
        settledOnes += text.first(settled.length).contains(u'*');
        const auto joined = runsInTwo(runs, settled, text.sliced(settled.length) + more);
        ASSERT_EQ(written(joined), written(parseInlineMarkdown(text + more)))
            << text.toStdString() << " | " << more.toStdString() << " settled " << settled.length;
    }
    EXPECT_GT(settledOnes, 1000);
}
