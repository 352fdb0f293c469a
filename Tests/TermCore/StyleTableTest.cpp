#include "Cells/StyleTable.h"
#include "TestRandom.h"

#include <gtest/gtest.h>

namespace termcore::test {
namespace {

Attribute randomAttribute(Random& random) {
    const auto color = [&] {
        switch (random() % 4) {
        case 0: return Attribute::Color::ansi256(static_cast<std::uint8_t>(random()));
        case 1:
            return Attribute::Color::trueColor(
                static_cast<std::uint8_t>(random()), static_cast<std::uint8_t>(random() % 3), 7);
        case 2: return Attribute::Color::defaultInvertedColor();
        default: return Attribute::Color::defaultColor();
        }
    };
    Attribute a;
    a.fg = color();
    a.bg = color();
    a.style = static_cast<CharacterStyle>(random() & 0xFF);
    a.underlineStyle = static_cast<UnderlineStyle>(random() % 6);
    if (random() % 4 == 0)
        a.underlineColor = color();
    return a;
}

TEST(StyleTable, GivesBackWhatItTook) {
    Random random(1);
    StyleTable table;
    std::vector<std::pair<StyleTable::Id, Attribute>> known;
    for (int i = 0; i < 5000; ++i) {
        const Attribute attribute = randomAttribute(random);
        known.emplace_back(table.idOf(attribute), attribute);
    }
    for (const auto& [id, attribute] : known) {
        EXPECT_EQ(table.attributeOf(id), attribute);
        EXPECT_EQ(table.idOf(attribute), id);
    }
    EXPECT_EQ(table.idOf(Attribute::empty), StyleTable::defaultStyle);
}

TEST(StyleTable, PayloadsMakeALookOfTheirOwn) {
    StyleTable table;
    const auto linked = table.idOf(Attribute::empty, TinyAtom{5});
    EXPECT_NE(linked, StyleTable::defaultStyle);
    EXPECT_EQ(table.payloadOf(linked).code, 5);
    EXPECT_EQ(table.attributeOf(linked), Attribute::empty);
}

TEST(StyleTable, CollectKeepsWhatIsMarkedAndReusesTheRest) {
    StyleTable table;
    std::vector<StyleTable::Id> ids;
    for (std::uint16_t i = 1; i <= 100; ++i)
        ids.push_back(table.idOf(Attribute::empty, TinyAtom{i}));
    std::vector<bool> marks(table.capacity(), false);
    marks[StyleTable::indexOf(ids[41])] = true;
    table.collect(marks);
    EXPECT_EQ(table.size(), 1U);
    EXPECT_EQ(table.payloadOf(ids[41]).code, 42);
    for (std::uint16_t i = 1; i <= 100; ++i)
        EXPECT_EQ(table.payloadOf(table.idOf(Attribute::empty, TinyAtom{i})).code, i);
    EXPECT_EQ(table.capacity(), 100U);
}

TEST(Attribute, RendersAsSgr) {
    Attribute a;
    EXPECT_EQ(a.toSgr(), "0m");
    a.style = CharacterStyle::bold | CharacterStyle::underline | CharacterStyle::blink | CharacterStyle::inverse |
        CharacterStyle::invisible;
    a.fg = Attribute::Color::ansi256(9);
    a.bg = Attribute::Color::ansi256(200);
    EXPECT_EQ(a.toSgr(), "0;1;4;5;7;8;91;48;5;200m");
    a.style = CharacterStyle::none;
    a.fg = Attribute::Color::trueColor(1, 2, 3);
    a.bg = Attribute::Color::ansi256(12);
    EXPECT_EQ(a.toSgr(), "0;38;2;1;2;3;104m");
}

TEST(TinyAtom, RunsOutWithoutHarm) {
    const auto before = TinyAtom::lastUsed;
    TinyAtom::lastUsed = TinyAtom::maximumCode - 1;
    const auto last = TinyAtom::lookup("last");
    ASSERT_TRUE(last);
    EXPECT_EQ(last->code, TinyAtom::maximumCode);
    EXPECT_EQ(*last->target(), "last");
    EXPECT_FALSE(TinyAtom::lookup("one too many"));
    TinyAtom::release(last->code);
    EXPECT_EQ(last->target(), nullptr);
    TinyAtom::lastUsed = before;
}

}
}
