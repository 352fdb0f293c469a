// The real service and the real client, with a person at the keyboard. What the screen shows, what the client's
// models hold and what the database holds must be the same, whatever happens to the line and to the service.
#include "CuttableProxy.h"
#include "LocalService.h"
#include "Person.h"
#include "Printing.h"
#include "WaitFor.h"

#include <gtest/gtest.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;

const QString question = u"Объясни сортировку слиянием и покажи код на Python"_s;

class Conversation : public testing::Test {
protected:
    void start(const QStringList& serviceOptions) {
        m_options = serviceOptions;
        m_service.start(m_options);
        m_proxy.setServicePort(m_service.port());
        m_person.startClient();
        ASSERT_TRUE(m_person.signIn(u"user@example.com"_s, [this] { return m_service.code(); }));
        ASSERT_TRUE(waitFor([this] { return m_person.chat().isConnected(); }));
    }

    bool answerGrowsBeyond(qsizetype characters) {
        return waitFor([this, characters] { return modelAnswer().size() > characters; });
    }
    bool answerEnds() {
        return waitFor([this] { return !m_person.chat().isGenerating(); }, std::chrono::seconds(60));
    }
    QString modelAnswer(MessageListModel::Role role = MessageListModel::TextRole) {
        MessageListModel* messages = m_person.chat().messages();
        return messages->data(messages->index(messages->count() - 1), role).toString();
    }

    // Through the quick switch, which names the other chats.
    bool openOther() {
        const qint64 before = m_person.chat().activeChatId();
        m_person.press(Qt::Key_K, Qt::ControlModifier);
        if (!waitFor([this] { return m_person.focus() == u"quickSwitchField"_s; }))
            return false;
        m_person.press(Qt::Key_Return);
        return waitFor(
            [this, before] { return m_person.chat().activeChatId() != before && m_person.focus() == u"composer"_s; });
    }

    // Everything that was said, in the three places.
    void expectTheSameEverywhere(const QStringList& questions) {
        const auto stored = m_service.messages();
        ASSERT_EQ(static_cast<qsizetype>(stored.size()), questions.size() * 2);
        MessageListModel* messages = m_person.chat().messages();
        ASSERT_EQ(messages->count(), questions.size() * 2);
        for (int row = 0; row < messages->count(); ++row) {
            const auto& message = stored[static_cast<std::size_t>(row)];
            const QModelIndex index = messages->index(row);
            EXPECT_EQ(message.role, row % 2 == 0 ? u"user"_s : u"ai"_s);
            EXPECT_EQ(messages->data(index, MessageListModel::TextRole).toString(), message.text) << row;
            EXPECT_EQ(messages->data(index, MessageListModel::ThinkingRole).toString(), message.thinking) << row;
            EXPECT_EQ(message.chat, stored.front().chat);
            if (row % 2 == 0) {
                EXPECT_EQ(message.text, questions.at(row / 2));
            }
        }
        // The screen holds at least the last turn.
        settle();
        ASSERT_FALSE(m_person.readAnswers().isEmpty());
        EXPECT_EQ(m_person.readAnswers().last(), stored.back().text);
    }

    LocalService m_service;
    CuttableProxy m_proxy{0};
    Person m_person{m_proxy.serverPort()};
    QStringList m_options;
};

TEST_F(Conversation, AnAnswerStandsOnTheScreenInTheModelsAndInTheDatabase) {
    start({u"--demo-delay-ms"_s, u"1"_s});
    m_person.ask(question);
    EXPECT_EQ(m_person.chat().currentInput(), QString());
    ASSERT_TRUE(answerEnds());
    ASSERT_GT(modelAnswer().size(), 300);
    ASSERT_GT(modelAnswer(MessageListModel::ThinkingRole).size(), 30);
    expectTheSameEverywhere({question});

    m_person.ask(u"Спасибо"_s);
    ASSERT_TRUE(answerEnds());
    expectTheSameEverywhere({question, u"Спасибо"_s});
    EXPECT_EQ(m_person.readQuestions().last(), u"Спасибо"_s);
}

TEST_F(Conversation, ACutLineLosesAndDoublesNothing) {
    start({u"--demo-delay-ms"_s, u"10"_s});
    m_person.ask(question);
    for (const qsizetype length : {1, 250, 600}) {
        ASSERT_TRUE(answerGrowsBeyond(length)) << modelAnswer().toStdString();
        m_proxy.cut();
        ASSERT_TRUE(waitFor([this] { return !m_person.chat().isConnected(); }));
        EXPECT_TRUE(m_person.chat().isGenerating());
        ASSERT_TRUE(waitFor([this] { return m_person.chat().isConnected(); }));
    }
    ASSERT_TRUE(answerEnds());
    expectTheSameEverywhere({question});
}

TEST_F(Conversation, AKilledServiceKeepsWhatWasSeenAndTheChatGoesOn) {
    start({u"--demo-delay-ms"_s, u"10"_s});
    m_person.ask(question);
    ASSERT_TRUE(answerGrowsBeyond(300));
    m_service.kill();
    const QString seen = modelAnswer();
    ASSERT_TRUE(waitFor([this] { return !m_person.chat().isConnected(); }));
    m_service.start(m_options);
    // The answer cannot go on; the person is told so, and what was there stays.
    ASSERT_TRUE(waitFor([this] { return !m_person.chat().generationError().isEmpty(); }, std::chrono::seconds(30)));
    EXPECT_FALSE(m_person.chat().isGenerating());
    EXPECT_TRUE(modelAnswer().startsWith(seen));
    EXPECT_TRUE(waitFor([this] { return m_person.see(u"errorBanner"_s) != nullptr; }));
    expectTheSameEverywhere({question});

    m_person.ask(u"Что дальше?"_s);
    ASSERT_TRUE(answerEnds());
    expectTheSameEverywhere({question, u"Что дальше?"_s});
}

TEST_F(Conversation, AQuestionTypedWithoutALineIsSentWhenItIsBack) {
    start({u"--demo-delay-ms"_s, u"1"_s});
    m_proxy.holdDown();
    m_proxy.cut();
    ASSERT_TRUE(waitFor([this] { return !m_person.chat().isConnected(); }));
    m_person.ask(u"Слышно?"_s);
    settle();
    EXPECT_TRUE(m_service.messages().empty());
    m_proxy.restore();
    ASSERT_TRUE(answerEnds());
    expectTheSameEverywhere({u"Слышно?"_s});
}

TEST_F(Conversation, ADeadTokenLeadsToSignInAndTheDraftWaitsForItsUser) {
    start({u"--demo-delay-ms"_s, u"1"_s});
    m_person.ask(u"Привет"_s);
    ASSERT_TRUE(answerEnds());
    m_person.type(u"Недописанное"_s);
    m_service.forgetSessions();
    m_proxy.cut();
    ASSERT_TRUE(waitFor([this] { return m_person.see(u"emailField"_s) != nullptr; }));
    EXPECT_EQ(m_person.app().auth().errorMessage(), u"Ошибка авторизации. Попробуйте войти снова."_s);
    const QString used = m_service.code();
    const auto newCode = [this, used] { return m_service.code() == used ? QString() : m_service.code(); };
    ASSERT_TRUE(m_person.signIn(u"user@example.com"_s, newCode));
    EXPECT_EQ(m_person.see(u"composer"_s)->property("text").toString(), u"Недописанное"_s);
    EXPECT_EQ(m_person.chat().messages()->count(), 2);
    ASSERT_TRUE(waitFor([this] { return m_person.chat().isConnected(); }));
    m_person.press(Qt::Key_Return);
    ASSERT_TRUE(answerEnds());
    expectTheSameEverywhere({u"Привет"_s, u"Недописанное"_s});
}

TEST_F(Conversation, AnotherUserSeesNothingOfTheFirst) {
    start({u"--demo-delay-ms"_s, u"1"_s});
    m_person.ask(u"Тайна"_s);
    ASSERT_TRUE(answerEnds());
    m_person.type(u"Черновик"_s);
    m_person.app().auth().logout();
    const QString used = m_service.code();
    ASSERT_TRUE(m_person.signIn(
        u"other@example.com"_s, [this, used] { return m_service.code() == used ? QString() : m_service.code(); }));
    ASSERT_TRUE(waitFor([this] { return m_person.chat().isConnected(); }));
    EXPECT_EQ(m_person.chat().currentInput(), QString());
    EXPECT_EQ(m_person.chat().messages()->count(), 0);
    EXPECT_EQ(m_person.chat().chats()->count(), 0);
    EXPECT_TRUE(m_person.readQuestions().isEmpty());
}

TEST_F(Conversation, StoppingKeepsTheTextSoFar) {
    start({u"--demo-delay-ms"_s, u"20"_s});
    m_person.ask(question);
    ASSERT_TRUE(answerGrowsBeyond(100));
    m_person.press(Qt::Key_Escape);
    EXPECT_FALSE(m_person.chat().isGenerating());
    const QString shown = modelAnswer();
    ASSERT_TRUE(waitFor([this, shown] {
        const auto stored = m_service.messages();
        return stored.size() == 2 && stored.back().text.startsWith(shown);
    }));
    EXPECT_EQ(modelAnswer(), shown);
}

TEST_F(Conversation, ARestartedClientIsSignedInAndOpensItsChat) {
    start({u"--demo-delay-ms"_s, u"1"_s});
    m_person.ask(question);
    ASSERT_TRUE(answerEnds());
    m_person.quitClient();
    m_person.startClient();
    ASSERT_TRUE(waitFor([this] { return m_person.chat().chats()->count() == 1; }));
    m_person.chat().selectChat(m_person.chat().chats()->chats().front().id);
    ASSERT_TRUE(waitFor([this] { return m_person.chat().messages()->count() == 2; }));
    expectTheSameEverywhere({question});
}

// By keyboard alone: a question in one chat, another one in a new chat while the first is answered, back and forth.
TEST_F(Conversation, TwoChatsAnswerInTurnAndKeepTheirWordsApart) {
    start({u"--demo-delay-ms"_s, u"10"_s});
    m_person.ask(u"Длинный ответ про горы"_s);
    ASSERT_TRUE(answerGrowsBeyond(200));
    m_person.press(Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(m_person.chat().messages()->count(), 0);
    m_person.ask(u"Таблица рек"_s);
    ASSERT_TRUE(m_person.chat().isGenerating());
    EXPECT_EQ(modelAnswer(), QString()); // the first is still being told
    ASSERT_TRUE(openOther());
    EXPECT_TRUE(m_person.chat().isGenerating());
    ASSERT_TRUE(answerGrowsBeyond(400));
    ASSERT_TRUE(answerEnds());
    const QString first = modelAnswer();
    ASSERT_TRUE(waitFor([this] { return m_person.chat().chats()->count() == 2; }));
    ASSERT_TRUE(openOther());
    ASSERT_TRUE(answerEnds());
    ASSERT_TRUE(waitFor([this] { return modelAnswer() == m_service.messages().at(3).text; }));
    EXPECT_EQ(first, m_service.messages().at(1).text);
    EXPECT_NE(first, modelAnswer());
    EXPECT_EQ(m_person.readQuestions().last(), u"Таблица рек"_s);
}

TEST_F(Conversation, ANetworkThatGoesAndComesBackBringsTheAnswerOn) {
    start({u"--demo-delay-ms"_s, u"10"_s});
    m_person.ask(question);
    ASSERT_TRUE(answerGrowsBeyond(200));
    m_person.setNetwork(true); // it was there
    m_person.setNetwork(false);
    m_proxy.holdDown();
    m_proxy.cut();
    ASSERT_TRUE(waitFor([this] { return !m_person.chat().isConnected(); }));
    m_person.chat().reconnect(); // in vain: the next attempt would be some time away
    settle();
    const int before = m_proxy.connections();
    m_proxy.restore();
    m_person.setNetwork(true);
    ASSERT_TRUE(waitFor([this] { return m_person.chat().isConnected(); }, std::chrono::seconds(2)));
    EXPECT_GT(m_proxy.connections(), before);
    ASSERT_TRUE(answerEnds());
    expectTheSameEverywhere({question});
}

TEST_F(Conversation, AClientThatIsStartedAgainInMidAnswerGoesOn) {
    start({u"--demo-delay-ms"_s, u"20"_s});
    m_person.ask(question);
    ASSERT_TRUE(answerGrowsBeyond(200));
    m_person.quitClient();
    m_person.startClient();
    ASSERT_TRUE(waitFor([this] { return m_person.chat().chats()->count() == 1; }));
    m_person.chat().selectChat(m_person.chat().chats()->chats().front().id);
    EXPECT_TRUE(m_person.chat().isGenerating());
    ASSERT_TRUE(waitFor([this] { return modelAnswer().size() > 10; }));
    ASSERT_TRUE(answerEnds());
    ASSERT_TRUE(waitFor(
        [this] { return modelAnswer(MessageListModel::ThinkingRole) == m_service.messages().back().thinking; }));
    expectTheSameEverywhere({question});
}

TEST_F(Conversation, AQuestionTypedOfflineOutlivesTheClient) {
    start({u"--demo-delay-ms"_s, u"1"_s});
    m_proxy.holdDown();
    m_proxy.cut();
    ASSERT_TRUE(waitFor([this] { return !m_person.chat().isConnected(); }));
    m_person.ask(u"Дойдёт?"_s);
    settle();
    m_person.quitClient();
    m_proxy.restore();
    m_person.startClient();
    ASSERT_TRUE(waitFor([this] { return m_service.messages().size() == 2; }));
    ASSERT_TRUE(waitFor([this] { return m_person.chat().chats()->count() == 1; }));
    m_person.chat().selectChat(m_person.chat().chats()->chats().front().id);
    ASSERT_TRUE(answerEnds());
    expectTheSameEverywhere({u"Дойдёт?"_s});
}

// The list is there before the service has said a word, and any of its chats a few keys away.
TEST_F(Conversation, TwoThousandChatsAreThereAtOnce) {
    m_service.start({u"--demo-delay-ms"_s, u"1"_s});
    m_proxy.setServicePort(m_service.port());
    m_person.startClient();
    ASSERT_TRUE(m_person.signIn(u"user@example.com"_s, [this] { return m_service.code(); }));
    m_service.addChats(2000);
    m_person.quitClient();
    m_person.startClient(); // fetches and caches them
    ASSERT_TRUE(waitFor([this] { return m_person.chat().chats()->count() == 2000; }));
    m_person.quitClient();

    m_person.startClient();
    EXPECT_EQ(m_person.chat().chats()->count(), 2000); // with the first sight of the main screen
    ASSERT_TRUE(waitFor([this] { return m_person.focus() == u"composer"_s; }));
    m_person.press(Qt::Key_K, Qt::ControlModifier);
    ASSERT_TRUE(waitFor([this] { return m_person.focus() == u"quickSwitchField"_s; }))
        << m_person.focus().toStdString();
    m_person.type(u"беседа 1234"_s);
    m_person.press(Qt::Key_Return);
    ASSERT_TRUE(waitFor([this] { return m_person.chat().activeChatName() == u"Беседа 1234"_s; }));
}

}
}
