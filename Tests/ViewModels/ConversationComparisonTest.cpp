// What is here is compared with what the service has stored, and neither an early nor a late list does harm.
#include "ChatViewModelFixture.h"

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using namespace std::chrono_literals;
using testing::ElementsAre;

class ConversationComparison : public ChatViewModelTest {
protected:
    ConversationComparison() {
        chat->restore(u"u"_s);
        load({chatJson(1, u"Раз"_s), chatJson(2, u"Два"_s)});
        chat->selectChat(1);
        stored({});
    }

    // The service answers what it was asked last.
    void stored(const QStringList& texts) { http.open(messages).answer(messagesJson(1, texts)); }

    const QString messages = u"/chats/1/messages"_s;
};

TEST_F(ConversationComparison, AListThatIsOlderThanTheLastTurnIsAskedForAgain) {
    chat->selectChat(1);
    chat->selectChat(1); // one request at a time
    ask(u"a"_s);
    chunk(u"Раз"_s);
    end();
    stored({}); // worked out before the question
    EXPECT_THAT(shown(), ElementsAre(u"user: a"_s, u"ai: Раз"_s));
    stored({u"a"_s, u"Раз."_s});
    EXPECT_THAT(shown(), ElementsAre(u"user: a"_s, u"ai: Раз."_s));
    EXPECT_FALSE(http.hasOpen(messages));
    // In a chat that is not open, too.
    chat->selectChat(1);
    ask(u"b"_s);
    chat->createChat();
    end();
    stored({u"a"_s, u"Раз."_s});
    EXPECT_EQ(cached(1).size(), 4);
}

TEST_F(ConversationComparison, AnAnswerThatCameOverTwoLinesIsAskedForUntilItIsStored) {
    ask(u"a"_s);
    chunk(u"Раз"_s);
    reconnect();
    chunk(u"Раз"_s);
    end();
    stored({u"a"_s});
    EXPECT_THAT(shown(), ElementsAre(u"user: a"_s, u"ai: Раз"_s));
    virtualTime.advance(3s);
    http.open(messages).answer("{}", 500);
    EXPECT_FALSE(http.hasOpen(messages));
    restart(); // not even then is it forgotten
    stored({u"a"_s, u"Раз, два"_s});
    EXPECT_THAT(cached(1), ElementsAre(u"user: a"_s, u"ai: Раз, два"_s));
    virtualTime.advance(600s);
    EXPECT_FALSE(http.hasOpen(messages));
}

TEST_F(ConversationComparison, WhatIsNeverStoredIsNotWaitedForForever) {
    ask(u"a"_s);
    chunk(u"Раз"_s);
    reconnect();
    end();
    int times = 0;
    for (; http.hasOpen(messages); ++times) {
        stored({u"a"_s});
        virtualTime.advance(400s);
    }
    EXPECT_EQ(times, MessageLoader::maxRepeats + 1);
    EXPECT_THAT(shown(), ElementsAre(u"user: a"_s));
}

TEST_F(ConversationComparison, AQuestionThatWasLostReturnsEvenWhenAnothersAnswerWasTakenForItsOwn) {
    for (const bool isStopped : {false, true}) {
        ask(u"a"_s);
        service.breakOff(); // before anything was heard of it
        if (isStopped)
            chat->stopGeneration();
        virtualTime.advance(3s);
        service.accept();
        chunk((isStopped ? u"Второй"_s : u"Первый"_s) + u" чужой ответ, о котором здесь ничего не известно"_s);
        end();
        stored({});
        EXPECT_TRUE(shown().isEmpty());
        EXPECT_EQ(chat->currentInput(), u"a"_s);
        EXPECT_FALSE(chat->isGenerating());
        chat->setCurrentInput({});
    }
    // One that has arrived is not returned, whatever an early list says.
    ask(u"b"_s);
    chunk(u"Раз"_s);
    reconnect();
    end();
    stored({});
    EXPECT_EQ(chat->currentInput(), QString());
    EXPECT_THAT(shown(), ElementsAre(u"user: b"_s, u"ai: Раз"_s));
}

TEST_F(ConversationComparison, AnAnswerThatBeginsLikeTheLastIsAskedForAtItsEnd) {
    const QString same = u"Одинаковое начало двух ответов"_s;
    ask(u"a"_s);
    chunk(same);
    end();
    reconnect();
    ask(u"b"_s);
    chunk(same); // taken for a repeat, and so is its end
    end();
    EXPECT_TRUE(chat->isGenerating());
    stored({u"a"_s, same, u"b"_s, same}); // at once: the ends of the next would be taken for its own
    EXPECT_FALSE(chat->isGenerating());
    EXPECT_THAT(shown(), ElementsAre(u"user: a"_s, u"ai: "_s + same, u"user: b"_s, u"ai: "_s + same));
}

TEST_F(ConversationComparison, TheSameWordsAreCountedAsOftenAsTheyWereAsked) {
    ask(u"да"_s);
    chunk(u"Раз"_s);
    end();
    ask(u"да"_s);
    service.breakOff();
    chat->stopGeneration();
    ask(u"да"_s); // waits: of the second it is not known whether it arrived
    virtualTime.advance(3s);
    service.accept();
    virtualTime.advance(3s);
    stored({u"да"_s, u"Раз"_s, u"да"_s, u"Два"_s}); // it did
    EXPECT_EQ(lastText(), u"да"_s);
    EXPECT_EQ(chat->currentInput(), QString());
    EXPECT_TRUE(chat->isGenerating());
}

}
}
