#include "SharedText.h"

#include <gtest/gtest.h>

#include <thread>

using namespace Korvi;
using namespace Qt::Literals;

namespace {

// What a text holds is what was put into it, whoever else holds it and goes on with it.
TEST(SharedText, each_value_keeps_what_it_was) {
    SharedText text(u"начало"_s);
    std::vector<SharedText> held{text};
    std::vector<QString> expected{u"начало"_s};
    for (int i = 0; i < 400; ++i) {
        const QString piece = QString::number(i) + QString(i % 7, u'x');
        text.append(piece);
        held.push_back(text);
        expected.push_back(expected.back() + piece);
    }
    for (std::size_t i = 0; i < held.size(); ++i) {
        EXPECT_EQ(held[i].toString(), expected[i]);
        EXPECT_TRUE(text.continues(held[i])) << i;
        EXPECT_EQ(held[i].continues(text), i + 1 == held.size()) << i;
    }
}

TEST(SharedText, two_that_go_on_from_one_do_not_continue_each_other) {
    for (const qsizetype length : {1, 255, 256, 5000}) { // with and without room behind it
        for (const bool hasGrown : {false, true}) {
            SharedText base(QString(length, u'a'));
            if (hasGrown)
                base.append(u"b");
            SharedText left = base;
            SharedText right = base;
            left.append(u"left");
            right.append(u"right and more");
            left.append(u"!");
            EXPECT_EQ(left.toString(), base.toString() + u"left!"_s);
            EXPECT_EQ(right.toString(), base.toString() + u"right and more"_s);
            EXPECT_TRUE(left.continues(base));
            EXPECT_FALSE(left.continues(right));
            EXPECT_FALSE(right.continues(left));
        }
    }
}

TEST(SharedText, is_equal_by_what_it_holds) {
    SharedText grown(u"один "_s);
    grown.append(u"два");
    EXPECT_EQ(grown, SharedText(u"один два"_s));
    EXPECT_NE(grown, SharedText(u"один три"_s));
    EXPECT_EQ(SharedText(), SharedText(QString()));
    EXPECT_TRUE(grown.continues({}));
    EXPECT_FALSE(SharedText().continues(grown));
}

TEST(SharedText, becomes_another_text_and_knows_whether_it_went_on) {
    const SharedText text(u"один"_s);
    const SharedText longer = text.becoming(u"один два"_s);
    EXPECT_TRUE(longer.continues(text));
    EXPECT_EQ(longer.toString(), u"один два"_s);
    const SharedText other = longer.becoming(u"три"_s);
    EXPECT_FALSE(other.continues(longer));
    EXPECT_EQ(other.toString(), u"три"_s);
    EXPECT_TRUE(longer.becoming({}).isEmpty());
}

TEST(SharedText, is_read_on_another_thread_while_it_grows) {
    SharedText text(u"а"_s);
    std::vector<std::thread> readers;
    for (int i = 0; i < 8; ++i) {
        for (int piece = 0; piece < 200; ++piece)
            text.append(u"а");
        readers.emplace_back([held = text] {
            EXPECT_EQ(held.view().count(u'а'), held.size());
            SharedText own = held;
            own.append(u"б");
            EXPECT_EQ(own.view().back(), u'б');
        });
    }
    for (std::thread& reader : readers)
        reader.join();
    EXPECT_EQ(text.toString().count(u'а'), 1601);
}

}
