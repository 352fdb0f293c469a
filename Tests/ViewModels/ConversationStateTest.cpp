// What surrounds the messages: the banner, the hint, the project and the organization.
#include "ChatViewModelFixture.h"

#include <QSignalSpy>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using namespace std::chrono_literals;

class ConversationState : public ChatViewModelTest {
protected:
    ConversationState() {
        load({chatJson(1, u"Раз"_s), chatJson(2, u"Два"_s)});
        for (const int id : {1, 2})
            http.answer(u"/chats/%1/messages"_s.arg(id), messagesJson(id, {}));
    }
};

TEST_F(ConversationState, OnlyTheLastQuestionOfTheOpenChatIsOfferedToBeAskedAgain) {
    chat->selectChat(1);
    ask(u"a"_s);
    chunk(u"Раз"_s);
    chat->selectChat(2);
    error(u"Занято"_s, 1); // while another chat is open
    EXPECT_EQ(chat->generationError(), u"«Раз»: Занято"_s);
    EXPECT_FALSE(chat->canRetryError());

    ask(u"b"_s);
    end();
    error(u"Занято"_s, 2); // after the end: there is nothing to ask again
    EXPECT_EQ(chat->generationError(), u"Занято"_s);
    EXPECT_FALSE(chat->canRetryError());

    ask(u"c"_s);
    chunk(u"Три"_s);
    error(u"Занято"_s, 2);
    EXPECT_TRUE(chat->canRetryError());
    virtualTime.advance(8s);
    EXPECT_EQ(chat->generationError(), QString());
    EXPECT_FALSE(chat->canRetryError());
}

TEST_F(ConversationState, ThereIsNothingToAskAgainWithoutAQuestion) {
    chat->retryLastMessage();
    EXPECT_EQ(chat->messages()->count(), 0);
    http.answer(u"/chats/1/messages"_s, messagesJson(1, {QString(), u"Слушаю"_s}));
    chat->selectChat(1);
    const qsizetype frames = service.frames().size();
    chat->retryLastMessage();
    EXPECT_EQ(chat->messages()->count(), 2);
    EXPECT_EQ(service.frames().size(), frames);
}

TEST_F(ConversationState, TheHintOfASlowAnswerIsThereForThoseWhoComeBackToIt) {
    chat->selectChat(1);
    ask(u"a"_s);
    virtualTime.advance(50s);
    chat->selectChat(2);
    virtualTime.advance(60s);
    EXPECT_EQ(chat->generationHint(), QString()) << "nothing is awaited here";
    chat->selectChat(1);
    virtualTime.advance(60s);
    EXPECT_EQ(chat->generationHint(), u"Это может занять время..."_s);
    chunk(u"Ответ"_s);
    EXPECT_NE(chat->generationHint(), QString());
    end();
    EXPECT_EQ(chat->generationHint(), QString());
    virtualTime.advance(60s);
    EXPECT_EQ(chat->generationHint(), QString());
}

TEST_F(ConversationState, AChatOfAProjectIsCreatedThereAndTheNextOneIsNot) {
    QSignalSpy focus(chat, &ChatViewModel::inputFocusRequested);
    chat->createChatInProject(4, u"Дом"_s);
    EXPECT_EQ(chat->activeProjectName(), u"Дом"_s);
    ask(u"a"_s);
    EXPECT_EQ(lastFrame()["data"_L1]["projectId"_L1].toInt(), 4);
    created(9);
    chat->setEditImage(u"https://a/b.png"_s, u"Ярче"_s);
    chat->createChat();
    EXPECT_EQ(chat->pendingEditImageUrl(), QString());
    EXPECT_EQ(chat->activeProjectId(), std::nullopt);
    EXPECT_EQ(focus.count(), 3);
}

TEST_F(ConversationState, MessagesOfTheFormerOrganizationAreNotCachedForTheNext) {
    chat->createChatInProject(4, u"Дом"_s);
    http.hold(u"/chats/2/messages"_s);
    chat->selectChat(2);
    defaults.setString(u"currentOrganizationId"_s, u"org"_s);
    emit notifications.organizationDidChange();
    EXPECT_FALSE(http.hasOpen(u"/chats/2/messages"_s));
    EXPECT_EQ(cache.getCachedMessages(2), std::nullopt);
    EXPECT_EQ(chat->activeProjectId(), std::nullopt);
}

TEST_F(ConversationState, AnEmptyChatIsToldFromOneWhoseMessagesHaveNotCome) {
    const QString messages = u"/chats/1/messages"_s;
    EXPECT_TRUE(chat->areMessagesLoaded()) << "a new chat has none to come";
    http.hold(messages);
    chat->selectChat(1);
    EXPECT_FALSE(chat->areMessagesLoaded());
    http.open(messages).answer("{}", 500);
    EXPECT_FALSE(chat->areMessagesLoaded());
    virtualTime.advance(3s);
    http.open(messages).fail(URLError::Code::notConnectedToInternet);
    service.breakOff();
    virtualTime.advance(2s);
    service.accept(); // "they appear when the connection returns"
    http.open(messages).answer(messagesJson(1, {}));
    EXPECT_TRUE(chat->areMessagesLoaded());
    EXPECT_EQ(chat->messages()->count(), 0);
    chat->selectChat(2);
    EXPECT_TRUE(chat->areMessagesLoaded()); // at once
    chat->selectChat(1);
    EXPECT_FALSE(chat->areMessagesLoaded());
    chat->createChat();
    EXPECT_TRUE(chat->areMessagesLoaded());
}

TEST_F(ConversationState, TheStatusSaysWhatBecameOfTheConnection) {
    EXPECT_EQ(chat->connectionStatus(), u"Connected"_s);
    http.fail(u"/sockets/ticket"_s, URLError::Code::notConnectedToInternet);
    service.breakOff();
    virtualTime.advance(5s);
    EXPECT_EQ(chat->connectionStatus(), u"Reconnecting..."_s) << "nobody asked for it";
    chat->reconnect();
    EXPECT_EQ(chat->connectionStatus(), u"Failed"_s);
    http.hold(u"/sockets/ticket"_s);
    chat->reconnect();
    EXPECT_EQ(chat->connectionStatus(), u"Connecting..."_s);
    http.open(u"/sockets/ticket"_s).answer(R"({"ticket":"t"})");
    service.accept();
    EXPECT_EQ(chat->connectionStatus(), u"Connected"_s);

    http.hold(u"/chats"_s);
    emit notifications.organizationDidChange();
    EXPECT_EQ(chat->connectionStatus(), u"Connecting..."_s) << "the line has been given up";
}

TEST_F(ConversationState, AnErrorStaysForItsTimeWhateverTheLineDoes) {
    chat->selectChat(1);
    ask(u"a"_s);
    chunk(u"Раз"_s);
    error(u"Занято"_s, 1);
    service.breakOff();
    virtualTime.advance(3s);
    service.accept();
    chat->reconnect();
    service.accept();
    EXPECT_EQ(chat->generationError(), u"Занято"_s);
    EXPECT_TRUE(chat->canRetryError());
    virtualTime.advance(5s);
    EXPECT_EQ(chat->generationError(), QString());
}

}
}
