// Finding one's way between chats, with the keyboard alone.
#include "CuttableProxy.h"
#include "LocalService.h"
#include "Person.h"
#include "Printing.h"
#include "WaitFor.h"

#include <gtest/gtest.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;

class Sidebar : public testing::Test {
protected:
    void SetUp() override {
        m_service.start({u"--demo-delay-ms"_s, u"1"_s});
        m_proxy.setServicePort(m_service.port());
        m_person.startClient();
        ASSERT_TRUE(m_person.signIn(u"user@example.com"_s, [this] { return m_service.code(); }));
        ASSERT_TRUE(waitFor([this] { return chat().isConnected(); }));
    }

    ChatViewModel& chat() { return m_person.chat(); }

    // A new chat with one question; named after it.
    qint64 askInNewChat(const QString& question) {
        m_person.press(Qt::Key_N, Qt::ControlModifier);
        m_person.ask(question);
        EXPECT_TRUE(waitFor([this] { return chat().activeChatId() > 0 && !chat().isGenerating(); }));
        return chat().activeChatId();
    }
    bool focused(const QString& objectName) {
        return waitFor([&] { return m_person.focus() == objectName; });
    }
    // With the keyboard back in the list.
    bool dialogGone() {
        return waitFor([this] { return !m_person.see(u"dialogTitle"_s) && m_person.focus() == u"chatList"_s; });
    }
    void press(std::initializer_list<Qt::Key> keys) {
        for (const Qt::Key key : keys) {
            m_person.press(key);
            settle();
        }
    }
    QString nameOf(qint64 id) {
        const Chat* found = chat().chats()->find(id);
        return found ? found->name : QString();
    }

    LocalService m_service;
    CuttableProxy m_proxy{0};
    Person m_person{m_proxy.serverPort()};
};

TEST_F(Sidebar, AQuickSwitchGoesToAChatByAFewLetters) {
    const qint64 first = askInNewChat(u"Ёлка в лесу"_s);
    const qint64 second = askInNewChat(u"Рецепт без глютена"_s);
    m_person.press(Qt::Key_K, Qt::ControlModifier);
    ASSERT_TRUE(focused(u"quickSwitchField"_s));
    m_person.type(u"елк"_s);
    m_person.press(Qt::Key_Return);
    EXPECT_EQ(chat().activeChatId(), first);
    ASSERT_TRUE(focused(u"composer"_s));
    ASSERT_TRUE(waitFor([this] { return m_person.see(u"quickSwitchField"_s) == nullptr; }));
    ASSERT_TRUE(waitFor([this] { return m_person.readQuestions() == QStringList{u"Ёлка в лесу"_s}; }));

    // Without letters: back to the one before. The keyboard is a Russian one.
    m_person.pressCharacter(u'л', Qt::ControlModifier);
    ASSERT_TRUE(focused(u"quickSwitchField"_s));
    m_person.press(Qt::Key_Return);
    EXPECT_EQ(chat().activeChatId(), second);
    ASSERT_TRUE(focused(u"composer"_s));

    ASSERT_TRUE(waitFor([this] { return m_person.see(u"quickSwitchField"_s) == nullptr; }));
    m_person.press(Qt::Key_Up);
    EXPECT_EQ(chat().currentInput(), u"Рецепт без глютена"_s);
    m_person.press(Qt::Key_Escape);
    EXPECT_EQ(chat().currentInput(), QString());
    m_person.pressCharacter(u'т', Qt::ControlModifier);
    EXPECT_EQ(chat().activeChatId(), -1);
}

TEST_F(Sidebar, AChatIsRenamedPinnedAndDeleted) {
    const qint64 older = askInNewChat(u"Первый"_s);
    const qint64 newer = askInNewChat(u"Второй"_s);
    m_person.press(Qt::Key_F, Qt::ControlModifier);
    ASSERT_TRUE(focused(u"chatSearch"_s));
    m_person.type(u"перв"_s);
    press({Qt::Key_Down, Qt::Key_F2});
    ASSERT_TRUE(focused(u"dialogField"_s));
    m_person.type(u"Переименованный"_s);
    press({Qt::Key_Return});
    ASSERT_TRUE(waitFor([&] { return nameOf(older) == u"Переименованный"_s; }));

    ASSERT_TRUE(dialogGone());
    m_person.press(Qt::Key_F, Qt::ControlModifier);
    press({Qt::Key_Escape, Qt::Key_Down, Qt::Key_Down, Qt::Key_Menu, Qt::Key_Return});
    ASSERT_TRUE(waitFor([&] { return chat().chats()->isFavorite(older); }));
    EXPECT_EQ(chat().chats()->chats().front().id, older);

    // The keyboard stayed with that chat, which is now the first; the open one is below it.
    ASSERT_TRUE(focused(u"chatList"_s));
    press({Qt::Key_Down, Qt::Key_Delete, Qt::Key_Return}); // "no" is where the keyboard stands
    EXPECT_EQ(chat().chats()->count(), 2);
    ASSERT_TRUE(dialogGone());
    press({Qt::Key_Delete, Qt::Key_Right, Qt::Key_Return});
    ASSERT_TRUE(waitFor([this] { return chat().chats()->count() == 1; }));
    EXPECT_EQ(nameOf(newer), QString());
    EXPECT_EQ(chat().activeChatId(), -1);
}

TEST_F(Sidebar, AnotherModelStartsANewChat) {
    const qint64 first = askInNewChat(u"Первый"_s);
    m_person.press(Qt::Key_M, Qt::ControlModifier);
    ASSERT_TRUE(waitFor([this] { return m_person.see(u"model.aiplus"_s) != nullptr; }));
    press({Qt::Key_Return}); // the one in force
    EXPECT_EQ(chat().activeChatId(), first);
    m_person.press(Qt::Key_M, Qt::ControlModifier);
    press({Qt::Key_Down, Qt::Key_Return});
    EXPECT_EQ(chat().selectedModel(), u"gpt-4"_s);
    EXPECT_EQ(chat().activeChatId(), -1);
    EXPECT_EQ(m_person.see(u"modelButton"_s)->property("text").toString(), u"ChatGPT 5.4"_s);
    ASSERT_TRUE(focused(u"composer"_s));
}

}
}
