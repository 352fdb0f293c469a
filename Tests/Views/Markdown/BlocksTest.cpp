#include "BlockParser.h"
#include "Segments.h"
#include "TableText.h"
#include "Written.h"

#include <gmock/gmock.h>

using namespace Korvi::Markdown;
using testing::ElementsAreArray;

namespace {

struct Case {
    const char* text;
    std::vector<std::string> blocks;
};

void expectBlocks(const std::vector<Case>& cases) {
    for (const Case& c : cases)
        EXPECT_THAT(writtenAll(parseBlocks(QString(c.text))), ElementsAreArray(c.blocks)) << c.text;
}

}

TEST(Blocks, LinesThatAreABlockByThemselves) {
    expectBlocks({
        {"", {}},
        {" \t\n\n ", {}},
        {"# A\n###### F \n####### G", {"h1 {A}", "h6 {F}", "p {####### G}"}},
        {"#A\n# \n#", {"p {#A # #}"}},
        {"- a\n* b\n•  c\n  - d", {"item {a}", "item {b}", "item {c}", "item {d}"}},
        {"-\n- \n*a\n-\ta", {"p {- - *a -\ta}"}},
        {"1. one\n12.  twelve\n007. seven", {"1 {one}", "12 {twelve}", "7 {seven}"}},
        {"1. \n1.a\n1) b\n99999999999999999999. c", {"p {1. 1.a 1) b 99999999999999999999. c}"}},
        {"✅ done\ntext ✅", {"item {✅ done}", "p {text ✅}"}},
        {"→ arrow", {"p {→ arrow}"}},
        {"a\r\nb\r\n\r\n- c\r\n", {"p {a b}", "item {c}"}},
    });
}

TEST(Blocks, ParagraphsJoinTheirLines) {
    expectBlocks({
        {"a\n  b\t\nc\n\nd", {"p {a b c}", "p {d}"}},
        {"a\n# h\nb\n- i\nc", {"p {a}", "h1 {h}", "p {b}", "item {i}", "p {c}"}},
        {"  ```\na", {"p {``` a}"}},
    });
}

TEST(Blocks, Images) {
    expectBlocks({
        {"![cat](http://a/b.png)", {"image {http://a/b.png} alt {cat}"}},
        {"  ![](u)  ", {"image {u}"}},
        {"![a](b) ![c](d)", {"image {b) ![c](d} alt {a}"}},
        {"see ![a](b) and ![c](d)", {"p {see}", "image {b} alt {a}", "p {and}", "image {d} alt {c}"}},
        {"![a](b) tail", {"image {b} alt {a}", "p {tail}"}},
        {"![two\nlines](u)", {"image {u} alt {two lines}"}},
        {"x ![a] (b) ![c](", {"p {x ![a] (b) ![c](}"}},
        {"x ![a![b](c) y", {"p {x}", "image {c} alt {a![b}", "p {y}"}},
    });
}

TEST(Blocks, Code) {
    expectBlocks({
        {"```python\nx = 1\n\n  y\n```\nafter", {"code:python {x = 1⏎⏎  y}", "p {after}"}},
        {"```\n\n\na\n\n```", {"code {a}"}},
        {"``` \n```", {"code {}"}},
        {"```", {"code {}"}},
        {"text\n```c\na\n# b\n- c\n| d |\n|-|", {"p {text}", "code:c {a⏎# b⏎- c⏎| d |⏎|-|}"}},
        {"```a\n ```\n```b", {"code:a { ```}"}},
        {"```Mermaid\ngraph\n```", {"mermaid {graph}"}},
        {"```mermaid\ngraph", {"mermaid {graph}"}},
    });
}

TEST(Blocks, Formulas) {
    expectBlocks({
        {"$$a+b$$", {"tex {a+b}"}},
        {"a\n  $$ x $$  \nb", {"p {a}", "tex { x }", "p {b}"}},
        {"$$\na\n  b\n  c $$\nd", {"tex {a⏎  b⏎c}", "p {d}"}},
        {"$$a\n$$\nb", {"tex {a}", "p {b}"}},
        {"$$a\nb\n# c", {"tex {a⏎b⏎# c}"}},
        {"$$ a \n b \n c $$ \nd", {"tex {a⏎ b ⏎c}", "p {d}"}}, // blanks inside stay, but not at the edges' lines
        {"$$", {"tex {}"}},
        {"$$$", {"tex {$}"}},
        {"$$$$", {"tex {}"}},
        // What stands behind the second pair goes with it; two characters are two, not two halves of one.
        {"$$a$$.", {"tex {a$}"}},
        {"$$a$$😀", {"tex {a$}"}},
        {"a $$b$$", {"p {a $$b$$}"}},
        // Formulas come first, and leave an open fence as it is.
        {"```py\na\n$$x$$\nb\n```\nc", {"tex {x}", "code:py {a⏎b}", "p {c}"}},
        {"```py\na\n$$x\n```", {"tex {x⏎```}", "code:py {a}"}},
        {"```\na\n$$\nx\n$$\n$$y$$\nb", {"tex {x}", "tex {y}", "code {a⏎b}"}},
    });
}

TEST(Blocks, Tables) {
    expectBlocks({
        {"| a | b |\n|:-:|--:|\n| 1 |\n| 1 | 2 | 3 |\nx", {"table {a ¦ b} => {1} {1 ¦ 2 ¦ 3}", "p {x}"}},
        {"p\n |a|\n|-\n|1", {"p {p}", "table {a} < {1}"}},
        {"|a|\n|b|\nc", {"p {|a| |b| c}"}},
        {"|a|", {"p {|a|}"}},
        {"|a|\n|b|\n|-|\n", {"p {|a|}", "table {b} <"}},
        {"|a|\n|-|\n$$x$$\n|b|", {"table {a} <", "tex {x}", "p {|b|}"}},
        {"||a||b||\n|:|-\n|", {"table {a ¦  ¦ b} =< {}"}},
        {"|a|\n|x-|\n|-|", {"table {a} < {-}"}},
    });
}

TEST(Segments, TextIsMergedAndSpecialBlocksStandAlone) {
    const auto segments = groupBlocksIntoSegments(u"# A **b**\np\n- i\n```\nc\n```\n2. n\n\nx $y$ z\n\nprice $5\n✅ e");
    EXPECT_THAT(writtenAll(segments),
        testing::ElementsAre("text [01]{A }B{b} [30]{p} [10  •  ]{i}", "special code {c}", "text [202. ]{n}",
            "special p {x $y$ z}", "text [30]{price $5} [10  ]{✅ e}"));
    const auto& last = std::get<TextSegment>(segments.back());
    EXPECT_TRUE(last.blocks[1].hasLeadingEmoji);
}

TEST(Segments, TheirSourceParsesToTheSame) {
    const QString text = "### A **b**\n\np *q*\n\n- i\n7. `n`\n✅ e";
    QStringList sources;
    const auto segments = groupBlocksIntoSegments(text);
    for (const TextBlock& block : std::get<TextSegment>(segments.front()).blocks)
        sources.append(block.source());
    EXPECT_EQ(groupBlocksIntoSegments(sources.join("\n\n")), groupBlocksIntoSegments(text));
}

TEST(Segments, AreRememberedForTheirTextAlone) {
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 120; ++i) {
            const QString text = QString("- %1").arg(i);
            ASSERT_EQ(resolvedSegments(text).segments, groupBlocksIntoSegments(text));
        }
    }
}

TEST(TableText, CellsLoseWhatIsOnlyNoise) {
    const std::pair<const char*, const char*> cases[] = {
        {"$$x$$", "x"},
        {"\\text{a b} \\text{c", "a b \\text{c"},
        {"a\\,b", "a b"},
        {"$x$ $5 y$", "x 5 y"},
        {"a$x$ b", "a$x$ b"},
        {"$x$, $y$", "$x$, y"},
        {"5\\% \\$ \\& \\_", "5% $ & _"},
        {"\\$x\\$", "$x$"},
        {" a    b \t", "a b"},
    };
    for (const auto& [cell, expected] : cases)
        EXPECT_EQ(cleanLatex(cell), QString(expected)) << cell;
}

TEST(TableText, GoesToTheClipboardAsTabSeparatedText) {
    const auto blocks = parseBlocks(u"|a|**b**|\n|-|-|\n|x\ty|`c`|\n|1|");
    EXPECT_EQ(tableAsTsv(*blocks.front().as<Block::Table>()), QString("a\tb\nx y\tc\n1"));
}
