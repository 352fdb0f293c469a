// What is around the conversation: the first start, the settings, the way out and back in. All of it by keyboard.
#include "CuttableProxy.h"
#include "LocalService.h"
#include "Person.h"
#include "WaitFor.h"

#include <gtest/gtest.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;

class Shell : public testing::Test {
protected:
    void startService() {
        m_service.start({u"--demo-delay-ms"_s, u"1"_s});
        m_proxy.setServicePort(m_service.port());
    }
    bool signIn(Person& person, const QString& goal = u"composer"_s) {
        const QString used = m_service.code();
        const auto newCode = [this, used] { return m_service.code() == used ? QString() : m_service.code(); };
        return person.signIn(u"user@example.com"_s, newCode, goal);
    }
    bool openSettings(Person& person, const QString& section) {
        person.press(Qt::Key_Comma, Qt::ControlModifier);
        if (!seen(person, u"generalSection"_s))
            return false;
        for (const QString& above : {u"general"_s, u"appearance"_s, u"account"_s, u"about"_s}) {
            if (above == section)
                return true;
            person.press(Qt::Key_Down);
        }
        return false;
    }
    static bool seen(const Person& person, const QString& objectName) {
        return waitFor([&] { return person.see(objectName) != nullptr; });
    }
    static bool gone(const Person& person, const QString& objectName) {
        return waitFor([&] { return person.see(objectName) == nullptr; });
    }
    static QString text(const Person& person, const QString& objectName) {
        const QQuickItem* item = person.see(objectName);
        return item ? item->property("text").toString() : u"(not there)"_s;
    }

    LocalService m_service;
    CuttableProxy m_proxy{0};
};

TEST_F(Shell, ANewPersonAgreesSignsInAndIsShownRound) {
    startService();
    Person person(m_proxy.serverPort(), {}, Person::Acquaintance::isNew);
    person.startClient();
    ASSERT_TRUE(seen(person, u"emailField"_s)); // the check went on behind the sheet
    ASSERT_TRUE(waitFor([&] { return person.focus() == u"acceptButton"_s; }));
    person.press(Qt::Key_Escape);
    person.press(Qt::Key_Left);
    person.press(Qt::Key_Return);
    ASSERT_TRUE(seen(person, u"dialogMessage"_s));
    EXPECT_EQ(text(person, u"dialogTitle"_s), u"Требуется согласие"_s);
    person.press(Qt::Key_Return);
    ASSERT_TRUE(gone(person, u"dialogMessage"_s));
    person.quitClient();

    person.startClient(); // "no" is not remembered as "yes"
    ASSERT_TRUE(seen(person, u"acceptButton"_s));
    ASSERT_TRUE(waitFor([&] { return person.focus() == u"acceptButton"_s; }));
    person.press(Qt::Key_Return);
    ASSERT_TRUE(gone(person, u"acceptButton"_s));

    ASSERT_TRUE(signIn(person, u"guideButton"_s));
    QStringList titles;
    for (int step = 0; step < 5; ++step) {
        titles.append(text(person, u"guideTitle"_s));
        EXPECT_EQ(text(person, u"guideButton"_s), step < 4 ? u"Понятно"_s : u"Начать чат"_s);
        if (step == 2) { // there and back
            person.press(Qt::Key_Left);
            person.press(Qt::Key_Right);
        }
        person.press(Qt::Key_Return);
    }
    EXPECT_EQ(titles.first(), u"Рабочее место для мыслей, файлов и задач"_s);
    EXPECT_EQ(titles.last(), u"Агент работает сам: браузер, файлы, команды"_s);
    ASSERT_TRUE(gone(person, u"guideTitle"_s));
    ASSERT_TRUE(waitFor([&] { return person.focus() == u"composer"_s; }));
    person.quitClient();

    person.startClient();
    ASSERT_TRUE(waitFor([&] { return person.focus() == u"composer"_s; }));
    settle();
    EXPECT_FALSE(person.see(u"guideTitle"_s));
    EXPECT_FALSE(person.see(u"acceptButton"_s));
}

TEST_F(Shell, TheSettingsShowAtOnceAndStay) {
    startService();
    Person person(m_proxy.serverPort());
    person.startClient();
    ASSERT_TRUE(signIn(person));
    ASSERT_TRUE(openSettings(person, u"appearance"_s));
    ASSERT_TRUE(seen(person, u"darkTheme"_s));
    EXPECT_FALSE(person.see(u"resetTextSizeButton"_s));
    ASSERT_TRUE(person.tabTo(u"systemTheme"_s));
    person.press(Qt::Key_Right);
    person.press(Qt::Key_Right);
    person.press(Qt::Key_Space);
    const QColor dark = person.see(u"darkTheme"_s)->window()->color();
    EXPECT_LT(dark.lightness(), 60);
    ASSERT_TRUE(person.tabTo(u"textSizeSlider"_s));
    for (int i = 0; i < 3; ++i)
        person.press(Qt::Key_Right);
    EXPECT_TRUE(person.see(u"resetTextSizeButton"_s));
    EXPECT_EQ(person.see(u"textSizePreview"_s)->property("font").value<QFont>().pixelSize(), 16);
    person.press(Qt::Key_Escape);
    ASSERT_TRUE(waitFor([&] { return person.see(u"composer"_s) != nullptr; }));
    EXPECT_FALSE(person.app().scenes().settingsWindow());
    EXPECT_EQ(person.app().scenes().mainWindow()->property("color").value<QColor>(), dark);
    person.quitClient();

    person.startClient();
    EXPECT_EQ(person.app().scenes().mainWindow()->property("color").value<QColor>(), dark);
    ASSERT_TRUE(seen(person, u"composer"_s));
    EXPECT_EQ(person.see(u"composer"_s)->property("font").value<QFont>().pixelSize(), 16);
}

TEST_F(Shell, AGuideIsShownAgainFromTheSettings) {
    startService();
    Person person(m_proxy.serverPort());
    person.startClient();
    ASSERT_TRUE(signIn(person));
    ASSERT_TRUE(openSettings(person, u"general"_s));
    ASSERT_TRUE(person.tabTo(u"agentGuideButton"_s));
    person.press(Qt::Key_Return);
    ASSERT_TRUE(seen(person, u"guideTitle"_s)); // in the main window, in front
    EXPECT_EQ(text(person, u"guideTitle"_s), u"OpenClaw выполняет задачу, а не просто отвечает"_s);
    person.press(Qt::Key_Right);
    person.press(Qt::Key_Right);
    EXPECT_EQ(text(person, u"guideButton"_s), u"Понятно"_s); // the last step leads to no chat
    person.press(Qt::Key_Escape);
    EXPECT_TRUE(gone(person, u"guideTitle"_s));
}

TEST_F(Shell, LeavingFromTheSettingsLeadsToTheSignInForm) {
    startService();
    Person person(m_proxy.serverPort());
    person.startClient();
    ASSERT_TRUE(signIn(person));
    ASSERT_TRUE(openSettings(person, u"account"_s));
    EXPECT_EQ(text(person, u"profileName"_s), u"user@example.com"_s);
    ASSERT_TRUE(person.tabTo(u"signOutButton"_s));
    person.press(Qt::Key_Return);
    ASSERT_TRUE(seen(person, u"dialogTitle"_s));
    person.press(Qt::Key_Escape); // not yet: and the settings stay
    ASSERT_TRUE(gone(person, u"dialogTitle"_s));
    EXPECT_EQ(person.focus(), u"signOutButton"_s);
    person.press(Qt::Key_Return);
    person.press(Qt::Key_Return);
    ASSERT_TRUE(seen(person, u"emailField"_s));
    EXPECT_FALSE(person.app().scenes().settingsWindow());
    EXPECT_FALSE(person.app().auth().isAuthenticated());
    ASSERT_TRUE(signIn(person)) << "and back in";
}

TEST_F(Shell, AnAccountIsDeletedOrItIsSaidWhyNot) {
    startService();
    Person person(m_proxy.serverPort());
    person.startClient();
    ASSERT_TRUE(signIn(person));
    ASSERT_TRUE(openSettings(person, u"account"_s));
    ASSERT_TRUE(person.tabTo(u"deleteAccountButton"_s));
    person.press(Qt::Key_Return);
    ASSERT_TRUE(seen(person, u"dialogTitle"_s));
    person.press(Qt::Key_Return); // the ring is on the way back
    ASSERT_TRUE(gone(person, u"dialogTitle"_s));

    m_proxy.holdDown();
    m_proxy.cut();
    person.press(Qt::Key_Return);
    person.press(Qt::Key_Right);
    person.press(Qt::Key_Return);
    ASSERT_TRUE(waitFor([&] { return text(person, u"dialogTitle"_s) == u"Не удалось удалить аккаунт"_s; }));
    EXPECT_EQ(text(person, u"dialogMessage"_s), u"Не удалось удалить аккаунт. Проверьте подключение к интернету."_s);
    person.press(Qt::Key_Return);
    ASSERT_TRUE(gone(person, u"dialogTitle"_s)) << person.focus().toStdString();
    EXPECT_TRUE(person.app().auth().isAuthenticated());

    m_proxy.restore();
    person.press(Qt::Key_Return);
    person.press(Qt::Key_Right);
    person.press(Qt::Key_Return);
    ASSERT_TRUE(seen(person, u"emailField"_s));
    EXPECT_FALSE(person.app().scenes().settingsWindow());
}

TEST_F(Shell, WithoutAServiceTheScreenSaysSoAndTriesAgain) {
    startService();
    Person person(m_proxy.serverPort());
    person.startClient();
    ASSERT_TRUE(signIn(person));
    person.quitClient();
    m_service.stop();
    m_proxy.holdDown();
    m_proxy.cut();

    person.startClient();
    ASSERT_TRUE(seen(person, u"retryConnectionButton"_s));
    person.press(Qt::Key_Return);
    ASSERT_TRUE(waitFor([&] { return !person.app().auth().isLoading(); }));
    EXPECT_TRUE(seen(person, u"retryConnectionButton"_s));
    startService();
    m_proxy.restore();
    person.press(Qt::Key_Return);
    EXPECT_TRUE(waitFor([&] { return person.focus() == u"composer"_s; })) << "the token is still good";
}

}
}
