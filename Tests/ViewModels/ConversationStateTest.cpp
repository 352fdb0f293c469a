#include "Backend.h"
#include "Backend/UsersService.h"
#include "Cache/DataCacheManager.h"
#include "Chat/ChatService.h"
#include "Chat/ChatViewModel.h"
#include "FakeRandom.h"
#include "FakeSocket.h"
#include "LogCapture.h"

#include <QSignalSpy>

#include <gmock/gmock.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using namespace std::chrono_literals;
using testing::ElementsAre;

// What surrounds the messages: the model, the banner, the hint, the composer, the organization.
class ConversationState : public testing::Test, public Backend {
protected:
    ConversationState() {
        signIn("tok");
        http.answer(u"/sockets/ticket"_s, R"({"ticket":"t"})");
        http.answer(u"/chats"_s, R"({"data":[)" + chatJson(1, "grok-2") + ',' + chatJson(2, "retired") + "]}");
        for (const int id : {1, 2, 9})
            http.answer(u"/chats/%1/messages"_s.arg(id), R"({"data":[]})");
        chat.connectToService();
        service.accept();
        const Running<void> loading([&] { return chat.loadChats(); });
    }

    static QByteArray chatJson(int id, const QByteArray& mode = "aiplus") {
        const QByteArray number = QByteArray::number(id);
        return R"({"id":)" + number + R"(,"name":"Чат )" + number + R"(","mode":")" + mode +
            R"(","createdAt":"c","updatedAt":"u","userId":"u"})";
    }
    static QByteArray messageJson(const QByteArray& text) {
        return R"({"data":[{"id":5,"createdAt":"c","chatId":1,"role":"user","usageTokens":0,)"
               R"("content":[{"type":"text","text":")" +
            text + R"("}]}]})";
    }
    void push(const QByteArray& frame) { service.push(QString::fromUtf8(frame)); }
    void created(int id) { push(R"({"event":"create","data":)" + chatJson(id) + '}'); }
    void chunk(const QByteArray& text) { push(R"({"event":"chunk","data":{"content":")" + text + R"("}})"); }
    void end() { push(R"({"event":"end","data":{}})"); }
    void fail(int chatId) {
        push(R"({"event":"error","data":{"message":"Занято","chatId":)" + QByteArray::number(chatId) + "}}");
    }
    void ask(const QString& text) {
        chat.setCurrentInput(text);
        chat.sendMessage();
    }

    FakeRandom random;
    FakeWebSocketTransport service;
    ChatService chatService{{client, service, virtualTime, random}};
    UsersService users{client};
    DataCacheManager cache{defaults, virtualTime};
    ChatViewModel chat{{chatService, users, cache, defaults, virtualTime, virtualTime, random, notifications}};
};

TEST_F(ConversationState, AChatBringsItsModelAndAnotherModelBeginsAnotherChat) {
    chat.selectChat(1);
    EXPECT_EQ(chat.selectedModel(), u"grok-2"_s);
    {
        const LogCapture log;
        chat.selectChat(2);
        EXPECT_EQ(log.count(u"⚠️ [ChatViewModel] Chat mode 'retired'"_s), 1) << log.text().toStdString();
    }
    EXPECT_EQ(chat.activeChatId(), 2) << "it opens all the same";
    EXPECT_EQ(chat.selectedModel(), u"grok-2"_s);

    chat.setShowingModelSelector(true);
    chat.chooseModel(u"grok-2"_s);
    EXPECT_EQ(chat.activeChatId(), 2) << "nothing was changed";
    EXPECT_FALSE(chat.showingModelSelector());
    chat.chooseModel(u"gpt-4"_s);
    EXPECT_EQ(chat.activeChatId(), -1);
    EXPECT_EQ(chat.chatModelName(), u"ChatGPT 5.4"_s);
    ask(u"a"_s);
    EXPECT_TRUE(service.frames().last().contains(u"\"mode\":\"gpt-4\""_s));
}

TEST_F(ConversationState, OnlyTheLastQuestionOfTheOpenChatIsOfferedToBeAskedAgain) {
    chat.selectChat(1);
    ask(u"a"_s);
    chat.selectChat(2);
    fail(1); // while another chat is open
    EXPECT_EQ(chat.generationError(), u"«Чат 1»: Занято"_s);
    EXPECT_FALSE(chat.canRetryError());

    ask(u"b"_s);
    end();
    fail(2); // after the end: there is nothing to ask again
    EXPECT_EQ(chat.generationError(), u"Занято"_s);
    EXPECT_FALSE(chat.canRetryError());

    ask(u"c"_s);
    fail(2);
    EXPECT_TRUE(chat.canRetryError());
    virtualTime.advance(8s);
    EXPECT_EQ(chat.generationError(), QString());
    EXPECT_FALSE(chat.canRetryError());
}

TEST_F(ConversationState, ThereIsNothingToAskAgainWithoutAQuestion) {
    chat.retryLastMessage();
    EXPECT_EQ(chat.messages()->count(), 0);
    http.answer(u"/chats/1/messages"_s, messageJson(""));
    chat.selectChat(1);
    const qsizetype frames = service.frames().size();
    chat.retryLastMessage();
    EXPECT_EQ(chat.messages()->count(), 1);
    EXPECT_EQ(service.frames().size(), frames);
}

TEST_F(ConversationState, TheHintOfASlowAnswerIsThereForThoseWhoComeBackToIt) {
    chat.selectChat(1);
    ask(u"a"_s);
    virtualTime.advance(50s);
    chat.selectChat(2);
    virtualTime.advance(60s);
    EXPECT_EQ(chat.generationHint(), QString()) << "nothing is awaited here";
    chat.selectChat(1);
    virtualTime.advance(60s);
    EXPECT_EQ(chat.generationHint(), u"Это может занять время..."_s);
    chunk("Ответ");
    EXPECT_NE(chat.generationHint(), QString());
    end();
    EXPECT_EQ(chat.generationHint(), QString());
    virtualTime.advance(60s);
    EXPECT_EQ(chat.generationHint(), QString());
}

TEST_F(ConversationState, ANewChatBeginsWithNothingOfTheLastOne) {
    QSignalSpy focus(&chat, &ChatViewModel::inputFocusRequested);
    chat.createChatInProject(4, u"Дом"_s);
    EXPECT_EQ(chat.activeProjectId(), 4);
    ask(u"a"_s);
    EXPECT_TRUE(service.frames().last().contains(u"\"projectId\":4"_s));
    created(9);
    chat.setEditImage(u"https://a/b.png"_s, u"Ярче"_s);
    EXPECT_EQ(chat.currentInput(), u"Ярче"_s);
    EXPECT_TRUE(chat.canSend());
    EXPECT_EQ(focus.count(), 2);

    chat.createChat();
    EXPECT_EQ(chat.activeChatId(), -1);
    EXPECT_EQ(chat.messages()->count(), 0);
    EXPECT_EQ(chat.currentInput(), QString());
    EXPECT_EQ(chat.pendingEditImageUrl(), QString());
    EXPECT_EQ(chat.activeProjectId(), std::nullopt);
    EXPECT_FALSE(chat.isGenerating());
    EXPECT_EQ(focus.count(), 3);
}

TEST_F(ConversationState, AnotherOrganizationBeginsWithItsOwnChats) {
    chat.createChatInProject(4, u"Дом"_s);
    chat.selectChat(1);
    ask(u"a"_s);
    chunk("Часть");
    http.hold(u"/chats/2/messages"_s);
    chat.selectChat(2);
    FakeHttp::Exchange& formerMessages = http.last();
    chat.setCurrentInput(u"черновик"_s);

    defaults.setString(u"currentOrganizationId"_s, u"org"_s);
    http.answer(u"/chats"_s, R"({"data":[)" + chatJson(7) + "]}");
    emit notifications.organizationDidChange();
    ASSERT_EQ(chat.chats()->count(), 1);
    EXPECT_EQ(chat.chats()->chats().front().id, 7);
    EXPECT_TRUE(http.requests().contains(u"GET /chats?org=org"_s));
    EXPECT_EQ(chat.activeChatId(), -1);
    EXPECT_EQ(chat.messages()->count(), 0);
    EXPECT_EQ(chat.currentInput(), QString());
    EXPECT_EQ(chat.activeProjectId(), std::nullopt);
    EXPECT_FALSE(chat.isGenerating());
    EXPECT_EQ(service.count(), 2U) << "the socket is built anew";

    formerMessages.answer(messageJson("чужое"));
    EXPECT_EQ(cache.getCachedMessages(2), std::nullopt);
    service.accept();
    chunk("Остаток"); // of the answer that was under way
    end();
    EXPECT_EQ(chat.messages()->count(), 0);
    EXPECT_EQ(cache.getCachedMessages(1), std::nullopt);
}

}
}
