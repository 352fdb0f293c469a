#include "ChatViewModelFixture.h"

#include <QSignalSpy>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using namespace std::chrono_literals;
using testing::ElementsAre;

TEST_F(ChatViewModelTest, AQuestionStandsAtOnceAndItsAnswerGrowsBehindIt) {
    QSignalSpy completed(&notifications, &NotificationCenter::didCompleteAIResponse);
    ask(u"Привет"_s);
    EXPECT_THAT(shown(), ElementsAre(u"user: Привет"_s, u"ai: "_s));
    EXPECT_TRUE(chat->isGenerating());
    EXPECT_EQ(chat->currentInput(), QString());
    EXPECT_EQ(lastFrame(),
        (QJsonObject{{"event", "create"},
            {"data",
                QJsonObject{
                    {"mode", "aiplus"}, {"content", QJsonArray{QJsonObject{{"type", "text"}, {"text", "Привет"}}}}}}}));

    created(7);
    EXPECT_EQ(chat->activeChatId(), 7);
    EXPECT_EQ(chat->chats()->count(), 1);
    chunk(u"Здрав"_s); // shows without delay
    EXPECT_THAT(shown(), ElementsAre(u"user: Привет"_s, u"ai: Здрав"_s));
    chunk(u"ству"_s); // waits for the flush
    chunk(u"йте"_s);
    EXPECT_THAT(shown(), ElementsAre(u"user: Привет"_s, u"ai: Здрав"_s));
    virtualTime.advance(80ms);
    EXPECT_THAT(shown(), ElementsAre(u"user: Привет"_s, u"ai: Здравствуйте"_s));
    chunk(u"!"_s);
    end(); // shows what waits
    EXPECT_THAT(shown(), ElementsAre(u"user: Привет"_s, u"ai: Здравствуйте!"_s));
    EXPECT_FALSE(chat->isGenerating());
    EXPECT_EQ(completed.count(), 1);

    ask(u"Ещё"_s);
    EXPECT_EQ(lastFrame()["event"_L1].toString(), u"send"_s);
    EXPECT_EQ(lastFrame()["data"_L1]["chatId"_L1].toInt(), 7);
}

TEST_F(ChatViewModelTest, NothingIsSentForWhiteSpaceOrWhileAnAnswerRuns) {
    ask(u" \n "_s);
    EXPECT_TRUE(shown().isEmpty());
    ask(u"a"_s);
    ask(u"b"_s);
    EXPECT_EQ(shown().size(), 2);
    EXPECT_EQ(chat->currentInput(), u"b"_s); // not lost either
}

TEST_F(ChatViewModelTest, QuietStreamsHoldNoTimers) {
    ask(u"a"_s);
    created(1);
    chunk(u"b"_s);
    virtualTime.advance(1s);
    EXPECT_THAT(virtualTime.dueIn(), ElementsAre(29'000, 29'000, 59'000)); // heartbeat, patience and hint, no flush
    end();
    EXPECT_THAT(virtualTime.dueIn(), ElementsAre(29'000));
}

TEST_F(ChatViewModelTest, ASlowAnswerIsExcused) {
    ask(u"a"_s);
    virtualTime.advance(60s);
    EXPECT_EQ(chat->generationHint(), u"Это может занять время..."_s);
    created(1);
    end();
    EXPECT_EQ(chat->generationHint(), QString());
}

TEST_F(ChatViewModelTest, AReplayedAnswerIsNotDoubled) {
    ask(u"a"_s);
    created(1);
    thinking(u"Подумаем как следует. "_s);
    chunk(u"Короткое, "_s);
    chunk(u"и "_s);
    reconnect();
    EXPECT_TRUE(chat->isGenerating());
    created(1);
    EXPECT_EQ(chat->chats()->count(), 1);
    thinking(u"Подумаем как следует. "_s);
    chunk(u"Короткое, "_s);
    chunk(u"и "_s);
    chunk(u"и "_s);
    chunk(u"ещё."_s);
    end();
    EXPECT_THAT(shown(), ElementsAre(u"user: a"_s, u"ai: \nПодумаем как следует. \nКороткое, и и ещё."_s));
}

TEST_F(ChatViewModelTest, SilenceAfterAReconnectEndsTheWaitingAfter120Seconds) {
    ask(u"a"_s);
    created(1);
    chunk(u"Начало"_s);
    reconnect();
    virtualTime.advance(119s);
    EXPECT_TRUE(chat->isGenerating());
    virtualTime.advance(1s);
    EXPECT_FALSE(chat->isGenerating());
    EXPECT_THAT(shown(), ElementsAre(u"user: a"_s, u"ai: Начало"_s));
    chunk(u"Поздно"_s); // of no answer that is under way
    end();
    EXPECT_THAT(shown(), ElementsAre(u"user: a"_s, u"ai: Начало"_s));
}

TEST_F(ChatViewModelTest, AnErrorKeepsTheTextAndItsBannerGoesAfter8Seconds) {
    ask(u"a"_s);
    created(1);
    chunk(u"Начало"_s);
    chunk(u" и"_s);
    error(u"Модель занята."_s, 1);
    EXPECT_FALSE(chat->isGenerating());
    EXPECT_EQ(chat->generationError(), u"Модель занята."_s);
    EXPECT_THAT(shown(), ElementsAre(u"user: a"_s, u"ai: Начало и"_s));
    virtualTime.advance(8s);
    EXPECT_EQ(chat->generationError(), QString());

    chat->retryLastMessage();
    EXPECT_THAT(shown(), ElementsAre(u"user: a"_s, u"user: a"_s, u"ai: "_s));
    EXPECT_EQ(lastFrame()["event"_L1].toString(), u"send"_s);
}

TEST_F(ChatViewModelTest, StoppingHoldsBeforeTheChatHasANumberToo) {
    ask(u"a"_s);
    chat->stopGeneration();
    EXPECT_FALSE(chat->isGenerating());
    EXPECT_EQ(service.frames().size(), 1); // nothing to abort yet
    created(5);
    EXPECT_EQ(lastFrame(), (QJsonObject{{"event", "abort"}, {"data", QJsonObject{{"chatId", 5}}}}));
    chunk(u"Лишнее"_s);
    end();
    EXPECT_THAT(shown(), ElementsAre(u"user: a"_s, u"ai: "_s));
    ask(u"b"_s);
    chunk(u"Ответ"_s);
    EXPECT_EQ(shown().last(), u"ai: Ответ"_s);
}

TEST_F(ChatViewModelTest, AnAnswerStaysInItsChatWhileTheUserIsElsewhere) {
    http.answer(u"/chats/1/messages"_s, R"({"data":[]})");
    ask(u"a"_s);
    created(1);
    chunk(u"Раз"_s);
    chat->createChat();
    EXPECT_TRUE(shown().isEmpty());
    EXPECT_FALSE(chat->isGenerating());
    chunk(u", два"_s);
    virtualTime.advance(1s);
    EXPECT_TRUE(shown().isEmpty());

    ask(u"b"_s); // its answer comes when the first has ended
    chunk(u", три"_s);
    EXPECT_THAT(shown(), ElementsAre(u"user: b"_s, u"ai: "_s));
    chat->selectChat(1);
    EXPECT_TRUE(chat->isGenerating());
    EXPECT_THAT(shown(), ElementsAre(u"user: a"_s, u"ai: Раз, два, три"_s));
    end();
    EXPECT_FALSE(chat->isGenerating());
    EXPECT_THAT(shown(), ElementsAre(u"user: a"_s, u"ai: Раз, два, три"_s));
    created(2);
    chunk(u"Другое"_s);
    EXPECT_EQ(chat->activeChatId(), 1);
    http.answer(u"/chats/2/messages"_s, R"({"data":[]})");
    chat->selectChat(2);
    EXPECT_THAT(shown(), ElementsAre(u"user: b"_s, u"ai: Другое"_s));
    EXPECT_TRUE(chat->isGenerating());
}

TEST_F(ChatViewModelTest, MessagesThatComeLateForAnotherChatAreNotShown) {
    http.answer(u"/chats"_s,
        "{\"data\":[" + QJsonDocument(chatJson(1)).toJson() + "," + QJsonDocument(chatJson(2)).toJson() + "]}");
    const Running<void> loading([&] { return chat->loadChats(); });
    const auto list = [](int id) {
        return QStringLiteral(
            R"({"data":[{"id":%1,"createdAt":"c","chatId":%1,"role":"user","usageTokens":0,"content":[{"type":"text","text":"чат %1"}]}]})")
            .arg(id)
            .toUtf8();
    };
    chat->selectChat(1);
    chat->selectChat(2);
    http.open(u"/chats/2/messages"_s).answer(list(2));
    http.open(u"/chats/1/messages"_s).answer(list(1));
    EXPECT_THAT(shown(), ElementsAre(u"user: чат 2"_s));
}

// The chat was read again while its answer was waited for, and cached with the question and what there was of the answer.
TEST_F(ChatViewModelTest, AQuestionThatIsCachedAlreadyIsNotAskedAgainByTheNextClient) {
    http.answer(u"/chats/1/messages"_s, messagesJson(1, {u"да"_s, u"Раз"_s, u"да"_s, u"Два"_s}));
    restart();
    ask(u"да"_s);
    created(1);
    chunk(u"Раз"_s);
    end();
    ask(u"да"_s); // the same once more: its answer is stored, but the client ends before it comes
    chat->selectChat(1);
    EXPECT_TRUE(chat->isGenerating());

    restart();
    virtualTime.advance(20s);
    EXPECT_THAT(service.frames(), ElementsAre());
    EXPECT_FALSE(defaults.data(u"runningGenerations"_s)) << "it has the answer, and waits for nothing";
    EXPECT_EQ(cached(1).size(), 4);
}

TEST_F(ChatViewModelTest, ARefusedQuestionReturnsIntoTheComposer) {
    ask(u"a"_s);
    error(u"Слишком много ответов сразу."_s);
    EXPECT_EQ(chat->currentInput(), u"a"_s);
    EXPECT_TRUE(shown().isEmpty());
    EXPECT_FALSE(chat->isGenerating());
    EXPECT_EQ(chat->generationError(), u"Слишком много ответов сразу."_s);

    chat->sendMessage();
    created(1);
    chunk(u"A"_s);
    end();
    ask(u"b"_s);
    error(u"Слишком много ответов сразу."_s, 1);
    EXPECT_TRUE(chat->isGenerating()) << "it is not known yet what became of it";
    http.answer(u"/chats/1/messages"_s, messagesJson(1, {u"a"_s, u"A"_s}));
    http.open(u"/chats/1/messages"_s).answer(messagesJson(1, {u"a"_s, u"A"_s}));
    EXPECT_EQ(chat->currentInput(), u"b"_s);
    EXPECT_FALSE(chat->isGenerating());
    EXPECT_THAT(shown(), ElementsAre(u"user: a"_s, u"ai: A"_s));

    // An answer that failed before its first word is something else: the service has the question.
    http.answer(u"/chats/1/messages"_s, messagesJson(1, {u"a"_s, u"A"_s, u"b"_s, QString()}));
    chat->sendMessage();
    error(u"Модель недоступна."_s, 1);
    EXPECT_EQ(chat->currentInput(), QString());
    EXPECT_FALSE(chat->isGenerating());
    EXPECT_THAT(shown(), ElementsAre(u"user: a"_s, u"ai: A"_s, u"user: b"_s, u"ai: "_s));
}

TEST_F(ChatViewModelTest, AnotherUserFindsNothing) {
    ask(u"a"_s);
    created(1);
    chunk(u"Тайна"_s);
    chat->reset();
    EXPECT_TRUE(shown().isEmpty());
    EXPECT_EQ(chat->chats()->count(), 0);
    chunk(u"Ещё"_s);
    end();
    EXPECT_TRUE(shown().isEmpty());
}

}
}
