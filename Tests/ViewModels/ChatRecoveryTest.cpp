// The record of the question that was asked last, with nothing around it but the stream of answers.
#include "Chat/ChatRecovery.h"
#include "Backend.h"
#include "Cache/DataCacheManager.h"
#include "Chat/AnswerStream.h"
#include "Chat/ChatService.h"
#include "Chat/MessageComposition.h"
#include "Chat/MessageListModel.h"
#include "FakeRandom.h"
#include "FakeSocket.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using namespace std::chrono_literals;

class ChatRecoveryTest : public testing::Test, public Backend {
protected:
    struct Client {
        explicit Client(ChatRecoveryTest& test)
            : service({test.client, test.sockets, test.virtualTime, test.random})
            , stream({service, test.cache, test.defaults, test.virtualTime, test.virtualTime, test.random}, messages)
            , recovery({service, test.defaults, test.virtualTime, test.virtualTime}, stream,
                  [](qint64 chatId) { return u"Чат %1"_s.arg(chatId); }) {
            QObject::connect(&stream, &AnswerStream::changed, &recovery, &ChatRecovery::streamChanged);
        }

        MessageListModel messages;
        ChatService service;
        AnswerStream stream;
        ChatRecovery recovery;
    };

    ChatRecoveryTest() {
        signIn("t");
        http.answer(u"/sockets/ticket"_s, R"({"ticket":"t"})");
        connectClient();
    }
    void connectClient() {
        client_ = std::make_unique<Client>(*this);
        client_->service.connect();
        virtualTime.runPosted();
        sockets.accept();
        virtualTime.runPosted();
    }
    // In a new chat, or in the one that is open.
    void ask(const QString& text, const QString& type, qint64 chatId = -1) {
        auto turn =
            MessageComposition::begin(MessageComposition::contentOf(text, std::nullopt), chatId, virtualTime, random);
        client_->messages.append({turn.question, turn.answer});
        recovery().noteQuestion(chatId, client_->messages.count(), type);
        Question question;
        question.chatId = chatId;
        question.text = text;
        recovery().follow(stream().begin(question));
    }
    void openNewChat() {
        stream().park();
        client_->messages.reset({});
    }
    AnswerStream& stream() { return client_->stream; }
    ChatRecovery& recovery() { return client_->recovery; }
    std::optional<PendingGeneration> record() {
        return GenerationStateManager(defaults, virtualTime, virtualTime).getPending();
    }

    FakeRandom random;
    FakeWebSocketTransport sockets;
    DataCacheManager cache{defaults, virtualTime};
    std::unique_ptr<Client> client_;
};

TEST_F(ChatRecoveryTest, TheRecordIsOfTheLastOfTwoNewChats) {
    ask(u"раз"_s, u"text"_s);
    openNewChat();
    ask(u"два"_s, u"image"_s);
    stream().created(1);
    EXPECT_EQ(record()->chatId, -1) << "that is the other chat";
    stream().end();
    ASSERT_TRUE(record()) << "the answer that was asked for last is still to come";
    stream().created(2);
    EXPECT_EQ(record()->chatId, 2);
    EXPECT_EQ(record()->type, u"image"_s);
    EXPECT_EQ(record()->chatName, u"Чат 2"_s);
    QSignalSpy ended(&recovery(), &ChatRecovery::generationEnded);
    stream().end();
    EXPECT_FALSE(record());
    EXPECT_EQ(ended.count(), 1);
}

TEST_F(ChatRecoveryTest, TheRecordIsOfTheLastOfTwoNewChatsAfterARestartToo) {
    ask(u"раз"_s, u"text"_s);
    openNewChat();
    ask(u"два"_s, u"image"_s);
    connectClient(); // a new one, which restores nothing yet
    stream().restore();
    recovery().restore();
    ASSERT_TRUE(record());
    stream().created(1);
    EXPECT_EQ(record()->chatId, -1);
    stream().created(2);
    EXPECT_EQ(record()->chatId, 2);
    // The next start knows the number already.
    connectClient();
    stream().restore();
    recovery().restore();
    EXPECT_EQ(record()->chatId, 2);
    stream().giveUp(1);
    EXPECT_TRUE(record());
    stream().giveUp(2);
    EXPECT_FALSE(record());
}

TEST_F(ChatRecoveryTest, ARecordWithoutAnAnswerThatIsWaitedForIsNotKept) {
    ask(u"раз"_s, u"text"_s);
    stream().stop(); // before it had a number
    EXPECT_FALSE(record());
    GenerationStateManager(defaults, virtualTime, virtualTime).markStarted(5, 2, u"text"_s, std::nullopt);
    connectClient();
    stream().restore();
    recovery().restore();
    EXPECT_FALSE(record()) << "nothing is known of an answer in chat 5";
}

TEST_F(ChatRecoveryTest, WhatIsTooOldIsGivenUpWithoutAskingAnybody) {
    ask(u"раз"_s, u"text"_s);
    stream().created(1);
    stream().receive(u"Нача"_s, AnswerFold::Kind::text);
    virtualTime.advance(601s);
    const auto requests = http.requests().size();
    recovery().recover([] { return 1; });
    virtualTime.runPosted();
    EXPECT_FALSE(recovery().isRecovering());
    EXPECT_FALSE(record());
    EXPECT_FALSE(stream().isGenerating());
    EXPECT_EQ(http.requests().size(), requests);
    EXPECT_EQ(client_->messages.messages().back().text(), u"Нача"_s);
}

}
}
