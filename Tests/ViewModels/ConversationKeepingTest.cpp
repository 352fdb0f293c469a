// What a user would notice of the chats around the open one: that they are there at once, come back after a restart,
// lose no question with the line, and keep their words to themselves.
#include "ChatViewModelFixture.h"

#include <QSignalSpy>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

class ConversationKeeping : public ChatViewModelTest {};

TEST_F(ConversationKeeping, ListsShowBeforeAnyRequestToTheirOwnUserOnly) {
    chat->restore(u"u"_s);
    load({chatJson(1, u"Раз"_s), chatJson(2, u"Два"_s)});
    chat->selectChat(1);
    http.open(u"/chats/1/messages"_s).answer(messagesJson(1, {u"вопрос"_s, u"ответ"_s}));
    chat->setCurrentInput(u"черновик"_s);
    virtualTime.advance(1s);

    start();
    const std::size_t before = http.count();
    chat->restore(u"u"_s);
    EXPECT_EQ(chat->chats()->count(), 2);
    EXPECT_EQ(chat->currentInput(), u"черновик"_s);
    chat->selectChat(1);
    EXPECT_THAT(shown(), ElementsAre(u"user: вопрос"_s, u"ai: ответ"_s));
    EXPECT_EQ(http.count(), before + 1); // the refresh of the chat

    start();
    chat->restore(u"somebody else"_s);
    EXPECT_EQ(chat->chats()->count(), 0);
    EXPECT_EQ(chat->currentInput(), QString());
    EXPECT_EQ(cache.diskCacheSize(), 0);
}

TEST_F(ConversationKeeping, AListThatCouldNotBeLoadedComesWithTheLine) {
    http.answer(u"/chats"_s, "{}", 500);
    const Running<void> loading([&] { return chat->loadChats(); });
    EXPECT_TRUE(chat->areChatsOutdated());
    http.answer(u"/chats"_s, listJson({chatJson(1, u"Раз"_s)}));
    reconnect();
    EXPECT_EQ(chat->chats()->count(), 1);
    EXPECT_FALSE(chat->areChatsOutdated());
    const std::size_t before = http.count();
    reconnect();
    EXPECT_EQ(http.count(), before + 1); // the ticket: what is known is not asked for again
}

TEST_F(ConversationKeeping, ARestartInMidAnswerGoesOn) {
    chat->restore(u"u"_s);
    ask(u"a"_s);
    created(1);
    chunk(u"Начало ответа, которое уже пришло. "_s);
    restart();
    EXPECT_EQ(chat->chats()->count(), 1);
    chat->selectChat(1);
    EXPECT_TRUE(chat->isGenerating());
    EXPECT_THAT(shown(), ElementsAre(u"user: a"_s, u"ai: "_s));
    chunk(u"Начало ответа, которое уже пришло. "_s);
    chunk(u"И конец."_s);
    end();
    EXPECT_FALSE(chat->isGenerating());
    EXPECT_THAT(shown(), ElementsAre(u"user: a"_s, u"ai: Начало ответа, которое уже пришло. И конец."_s));
    restart();
    chat->selectChat(1);
    EXPECT_FALSE(chat->isGenerating());
}

TEST_F(ConversationKeeping, AQuestionAskedWithoutALineGoesOutLaterAndCanBeTakenBack) {
    chat->restore(u"u"_s);
    service.breakOff();
    ask(u"без линии"_s);
    restart(); // even then
    EXPECT_EQ(lastText(), u"без линии"_s);
    created(1);
    end();

    service.breakOff();
    ask(u"ещё"_s);
    chat->stopGeneration();
    EXPECT_EQ(chat->currentInput(), u"ещё"_s);
    EXPECT_THAT(shown(), IsEmpty());
    virtualTime.advance(40s);
    service.accept();
    EXPECT_THAT(service.frames(), IsEmpty());
}

TEST_F(ConversationKeeping, AQuestionLostWithTheLineIsSentAgain) {
    ask(u"a"_s);
    created(1);
    end();
    ask(u"b"_s);
    reconnect();
    EXPECT_THAT(service.frames(), IsEmpty());
    ask(u"c"_s); // refused while b is waited for
    virtualTime.advance(3s);
    http.open(u"/chats/1/messages"_s).answer(messagesJson(1, {u"a"_s, QString()}));
    virtualTime.advance(7s);
    http.open(u"/chats/1/messages"_s).answer(messagesJson(1, {u"a"_s, QString()}));
    ASSERT_EQ(service.frames().size(), 1);
    EXPECT_EQ(lastText(), u"b"_s);
    chunk(u"ответ"_s);
    EXPECT_EQ(shown().last(), u"ai: ответ"_s);
}

TEST_F(ConversationKeeping, WhatTheServiceHasIsNotSentAgain) {
    ask(u"a"_s);
    created(1);
    end();
    ask(u"b"_s);
    reconnect();
    virtualTime.advance(3s);
    http.open(u"/chats/1/messages"_s).answer(messagesJson(1, {u"a"_s, QString(), u"b"_s})); // being worked on
    virtualTime.advance(7s);
    http.open(u"/chats/1/messages"_s).answer(messagesJson(1, {u"a"_s, QString(), u"b"_s, u"готово"_s}));
    EXPECT_THAT(service.frames(), IsEmpty());
    EXPECT_FALSE(chat->isGenerating());
    EXPECT_EQ(shown().last(), u"ai: готово"_s);
    // Its frames come after all, and then those of the next question.
    ask(u"c"_s);
    chunk(u"готово"_s);
    end();
    EXPECT_TRUE(chat->isGenerating());
    chunk(u"другое"_s);
    end();
    EXPECT_EQ(shown().last(), u"ai: другое"_s);
}

TEST_F(ConversationKeeping, ANewChatThatNobodyHeardOfIsBegunAgainOrItsQuestionComesBack) {
    ask(u"a"_s);
    reconnect();
    virtualTime.advance(29s);
    EXPECT_THAT(service.frames(), IsEmpty());
    virtualTime.advance(1s);
    EXPECT_EQ(lastText(), u"a"_s);

    chat->restore(u"u"_s);
    restart(); // now nobody can tell whether it was answered
    virtualTime.advance(30s);
    EXPECT_THAT(service.frames(), IsEmpty());
    EXPECT_EQ(chat->currentInput(), u"a"_s);
    EXPECT_FALSE(chat->generationError().isEmpty());
}

TEST_F(ConversationKeeping, ALineThatNeverLastsHoldsNoQuestionBack) {
    ask(u"новый чат"_s);
    const auto another = [this] {
        service.breakOff();
        virtualTime.advance(2s); // to the next attempt
        service.accept();
        const QStringList atOnce = service.frames();
        virtualTime.advance(11s);
        return std::pair(atOnce, service.frames());
    };
    EXPECT_THAT(another().second, IsEmpty());
    EXPECT_THAT(another().second, IsEmpty());
    // 30 s without a word of it, and this line has had its time to speak.
    const auto [atOnce, later] = another();
    EXPECT_THAT(atOnce, IsEmpty());
    ASSERT_EQ(later.size(), 1);
    EXPECT_EQ(lastText(), u"новый чат"_s);
    // Sent again, it has its time again.
    EXPECT_THAT(another().second, IsEmpty());
    created(2);
    chunk(u"Ответ."_s);
    end();
    EXPECT_THAT(shown(), ElementsAre(u"user: новый чат"_s, u"ai: Ответ."_s));
}

TEST_F(ConversationKeeping, ARepeatedAnswerIsNotTakenForTheNextOne) {
    ask(u"a"_s);
    created(1);
    chunk(u"Первый ответ, который уже закончился."_s);
    end();
    ask(u"b"_s);
    reconnect(); // before the service heard that the end had arrived
    created(1);
    chunk(u"Первый ответ, который уже закончился."_s);
    end();
    EXPECT_TRUE(chat->isGenerating());
    chunk(u"Второй ответ."_s);
    end();
    EXPECT_EQ(shown().last(), u"ai: Второй ответ."_s);
    EXPECT_EQ(cached(1), shown());
}

TEST_F(ConversationKeeping, AnAnswerWhoseEndWasTakenForAnothersIsFound) {
    const QString same = u"Оба ответа начинаются одинаково."_s;
    ask(u"a"_s);
    created(1);
    chunk(same);
    end();
    reconnect();
    ask(u"b"_s); // at once, before it is clear that nothing is repeated
    chunk(same);
    end();
    EXPECT_TRUE(chat->isGenerating());
    virtualTime.advance(3s);
    http.answer(u"/chats/1/messages"_s, messagesJson(1, {u"a"_s, same, u"b"_s, same}));
    while (http.hasOpen(u"/chats/1/messages"_s))
        http.open(u"/chats/1/messages"_s).answer(messagesJson(1, {u"a"_s, same, u"b"_s, same}));
    EXPECT_FALSE(chat->isGenerating());
    EXPECT_EQ(shown().last(), u"ai: "_s + same);
    // And one that nothing at all is heard of, on a line that stands.
    http.hold(u"/chats/1/messages"_s);
    ask(u"c"_s);
    virtualTime.advance(30s);
    http.open(u"/chats/1/messages"_s).answer(messagesJson(1, {u"a"_s, same, u"b"_s, same, u"c"_s}));
    EXPECT_TRUE(chat->isGenerating());
    virtualTime.advance(30s);
    http.open(u"/chats/1/messages"_s).answer(messagesJson(1, {u"a"_s, same, u"b"_s, same, u"c"_s, u"готово"_s}));
    EXPECT_FALSE(chat->isGenerating());
    EXPECT_EQ(shown().last(), u"ai: готово"_s);
    EXPECT_EQ(service.frames().size(), 2); // b and c, not asked twice
}

TEST_F(ConversationKeeping, AStoppedAnswerGivesItsPlaceOnlyWithItsEnd) {
    ask(u"a"_s);
    created(1);
    chunk(u"Раз"_s);
    chat->stopGeneration();
    ask(u"b"_s);
    chunk(u", два"_s); // of the first
    end();
    EXPECT_TRUE(chat->isGenerating());
    chunk(u"Ответ на второе"_s);
    end();
    EXPECT_THAT(shown(), ElementsAre(u"user: a"_s, u"ai: Раз"_s, u"user: b"_s, u"ai: Ответ на второе"_s));
    // In a chat that has no number yet, too.
    chat->createChat();
    ask(u"c"_s);
    chat->stopGeneration();
    ask(u"d"_s);
    EXPECT_EQ(lastText(), u"c"_s); // d joins the chat that c creates
    created(2);
    EXPECT_EQ(lastText(), u"d"_s);
    EXPECT_EQ(lastFrame()["data"_L1]["chatId"_L1].toInt(), 2);
    end();
    chunk(u"Ответ на d"_s);
    end();
    EXPECT_THAT(shown(), ElementsAre(u"user: c"_s, u"ai: "_s, u"user: d"_s, u"ai: Ответ на d"_s));
}

TEST_F(ConversationKeeping, WhatIsStoppedStaysStoppedWhenTheLineWasLost) {
    ask(u"a"_s);
    created(1);
    chunk(u"Раз"_s);
    chunk(u", два"_s);
    chat->stopGeneration(); // before the second piece is shown
    EXPECT_THAT(shown(), ElementsAre(u"user: a"_s, u"ai: Раз, два"_s));
    reconnect();
    ASSERT_EQ(service.frames().size(), 1);
    EXPECT_EQ(lastFrame(), (QJsonObject{{"event", "abort"}, {"data", QJsonObject{{"chatId", 1}}}}));
    end();

    ask(u"b"_s);
    chat->stopGeneration();
    reconnect();
    const auto sent = service.frames().size();
    const QByteArray stored = messagesJson(1, {u"a"_s, u"Раз, два"_s});
    http.answer(u"/chats/1/messages"_s, stored);
    while (http.hasOpen(u"/chats/1/messages"_s))
        http.open(u"/chats/1/messages"_s).answer(stored);
    virtualTime.advance(60s);
    EXPECT_EQ(service.frames().size(), sent); // not asked again
    EXPECT_EQ(chat->currentInput(), u"b"_s);
}

TEST_F(ConversationKeeping, AQuestionAskedBeforeTheHistoryIsThereFindsItAtItsEnd) {
    load({chatJson(1)});
    chat->selectChat(1);
    ask(u"b"_s);
    http.open(u"/chats/1/messages"_s).answer(messagesJson(1, {u"a"_s, u"старое"_s}));
    chunk(u"новое"_s);
    end();
    while (http.hasOpen(u"/chats/1/messages"_s))
        http.open(u"/chats/1/messages"_s).answer(messagesJson(1, {u"a"_s, u"старое"_s, u"b"_s, u"новое"_s}));
    EXPECT_THAT(shown(), ElementsAre(u"user: a"_s, u"ai: старое"_s, u"user: b"_s, u"ai: новое"_s));
}

TEST_F(ConversationKeeping, WhatComesBeforeOrInPlaceOfACreationIsNotTheNewChats) {
    ask(u"a"_s);
    chunk(u"чужое"_s);
    created(1);
    chunk(u"Раз"_s);
    EXPECT_THAT(shown(), ElementsAre(u"user: a"_s, u"ai: Раз"_s));
    // The end of the first is not heard; that the second begins says it.
    chat->createChat();
    ask(u"b"_s);
    created(2);
    chunk(u"Два"_s);
    virtualTime.advance(1s);
    EXPECT_THAT(shown(), ElementsAre(u"user: b"_s, u"ai: Два"_s));
    EXPECT_THAT(cached(1), ElementsAre(u"user: a"_s, u"ai: Раз"_s));
}

TEST_F(ConversationKeeping, AnErrorEndsTheAnswerOfTheChatThatItNames) {
    load({chatJson(1), chatJson(2)});
    chat->selectChat(1);
    http.open(u"/chats/1/messages"_s).answer(messagesJson(1, {}));
    ask(u"a"_s);
    chunk(u"Раз"_s);
    chat->selectChat(2);
    http.open(u"/chats/2/messages"_s).answer(messagesJson(2, {}));
    ask(u"b"_s);
    error(u"Модель занята."_s, 2);
    http.open(u"/chats/2/messages"_s).answer(messagesJson(2, {u"b"_s, u""_s}));
    EXPECT_FALSE(chat->isGenerating());
    chat->selectChat(1);
    EXPECT_TRUE(chat->isGenerating());
    chunk(u", два"_s);
    end();
    EXPECT_THAT(shown(), ElementsAre(u"user: a"_s, u"ai: Раз, два"_s));
}

TEST_F(ConversationKeeping, AnErrorInAnotherChatNamesIt) {
    ask(u"a"_s);
    created(1);
    chunk(u"Раз"_s);
    chat->createChat();
    error(u"Модель занята."_s, 1);
    EXPECT_EQ(chat->generationError(), u"«Имя»: Модель занята."_s);
    EXPECT_THAT(cached(1), ElementsAre(u"user: a"_s, u"ai: Раз"_s));
}

TEST_F(ConversationKeeping, DeletingTheOpenChatLeavesANewOne) {
    QSignalSpy deleted(&notifications, &NotificationCenter::projectChatDeleted);
    load({chatJson(1), chatJson(2)});
    chat->selectChat(1);
    ask(u"a"_s);
    chunk(u"Раз"_s);
    chat->deleteChat(1);
    EXPECT_EQ(chat->chats()->count(), 2); // not before the service has agreed
    http.open(u"/chats/1"_s).answer(R"({"success":true})");
    EXPECT_EQ(chat->chats()->count(), 1);
    EXPECT_EQ(chat->activeChatId(), -1);
    EXPECT_THAT(shown(), IsEmpty());
    EXPECT_FALSE(chat->isGenerating());
    EXPECT_EQ(deleted.count(), 1);
    EXPECT_EQ(cache.getCachedChats()->size(), 1U);
    chat->selectChat(2);
    ask(u"b"_s);
    chunk(u", два"_s); // of the one that is gone
    virtualTime.advance(1s);
    end();
    EXPECT_THAT(shown(), ElementsAre(u"user: b"_s, u"ai: "_s));
    EXPECT_TRUE(chat->isGenerating());
    chat->deleteChat(2);
    http.open(u"/chats/2"_s).answer("{}", 500);
    EXPECT_EQ(chat->chats()->count(), 1);
}

TEST_F(ConversationKeeping, AnotherOrganizationBeginsWithNothingOfTheFormer) {
    load({chatJson(1)});
    chat->selectChat(1);
    ask(u"a"_s);
    chunk(u"Раз"_s);
    chat->setCurrentInput(u"черновик"_s);
    defaults.setString(u"currentOrganizationId"_s, u"o"_s);
    emit notifications.organizationDidChange();
    EXPECT_EQ(chat->chats()->count(), 0);
    EXPECT_THAT(shown(), IsEmpty());
    EXPECT_EQ(chat->currentInput(), QString());
    EXPECT_FALSE(chat->isGenerating());
    EXPECT_EQ(cache.diskCacheSize(), 0);
    http.open(u"/chats"_s).answer(listJson({chatJson(9)}));
    EXPECT_EQ(chat->chats()->count(), 1);
    service.accept(); // a new socket
    chunk(u", два"_s);
    end();
    EXPECT_THAT(shown(), IsEmpty());
}

TEST_F(ConversationKeeping, TheModelFollowsTheChatAndANewModelBeginsANewChat) {
    load({chatJson(1, u"Раз"_s, u"claude-opus"_s), chatJson(2, u"Два"_s, u"unheard-of"_s)});
    EXPECT_EQ(chat->chatModelName(), u"Авто"_s);
    chat->selectChat(1);
    EXPECT_EQ(chat->chatModelName(), u"Claude Opus 4.7"_s);
    chat->selectChat(2);
    EXPECT_EQ(chat->selectedModel(), u"claude-opus"_s);
    chat->setShowingModelSelector(true);
    chat->chooseModel(u"claude-opus"_s); // the one that is chosen
    EXPECT_EQ(chat->activeChatId(), 2);
    EXPECT_FALSE(chat->showingModelSelector());
    chat->chooseModel(u"gpt-4"_s);
    EXPECT_EQ(chat->activeChatId(), -1);
    ask(u"a"_s);
    EXPECT_EQ(lastFrame()["data"_L1]["mode"_L1].toString(), u"gpt-4"_s);
    start();
    EXPECT_EQ(chat->selectedModel(), u"gpt-4"_s);
}

TEST_F(ConversationKeeping, TheFirstFiveChatsAreFetchedAheadWhenTheyAreStale) {
    QJsonArray six;
    for (int id = 1; id <= 6; ++id)
        six.append(chatJson(id));
    load(six);
    cache.cacheMessages({}, 2);
    virtualTime.advance(300s); // not older than that
    const Running<void> prefetch([&] { return chat->prefetchRelatedData(); });
    http.open(u"/chats/1/messages"_s).answer(messagesJson(1, {u"a"_s, u"b"_s}));
    http.open(u"/chats/3/messages"_s).answer("{}", 500); // skipped
    http.open(u"/chats/4/messages"_s).answer(messagesJson(4, {}));
    http.open(u"/chats/5/messages"_s).answer(messagesJson(5, {}));
    EXPECT_TRUE(prefetch.isDone());
    EXPECT_THAT(cached(1), ElementsAre(u"user: a"_s, u"ai: b"_s));
}

TEST_F(ConversationKeeping, AnImageToBeEditedIsSentWithOrWithoutWords) {
    chat->setEditImage(u"https://i/1.png"_s, u"Добавь небо"_s);
    EXPECT_TRUE(chat->canSend());
    chat->setCurrentInput({});
    EXPECT_TRUE(chat->canSend());
    chat->sendMessage();
    const QJsonObject image = lastFrame()["data"_L1]["content"_L1].toArray().first().toObject();
    EXPECT_EQ(image["imageUrl"_L1].toString(), u"https://i/1.png"_s);
    EXPECT_EQ(chat->pendingEditImageUrl(), QString());
    const auto& content = *chat->messages()->messages().front().content;
    ASSERT_EQ(content.size(), 1U);
    EXPECT_TRUE(content.front().as<MessageContent::Image>());
}

TEST_F(ConversationKeeping, AMessageLeavesTheScreenAndWhatWasBeingWrittenWaits) {
    chat->restore(u"u"_s);
    load({chatJson(1)});
    chat->selectChat(1);
    http.open(u"/chats/1/messages"_s).answer(messagesJson(1, {u"вопрос"_s, u"ответ"_s}));
    EXPECT_EQ(chat->lastQuestion(), u"вопрос"_s);
    chat->deleteMessage(101);
    EXPECT_THAT(shown(), ElementsAre(u"user: вопрос"_s));
    chat->deleteMessage(999);
    chat->setCurrentInput(u"недописано"_s);
    chat->createChat();
    EXPECT_EQ(chat->currentInput(), QString());
    restart(); // not even then
    chat->selectChat(1);
    EXPECT_EQ(chat->currentInput(), u"недописано"_s);
}

}
}
