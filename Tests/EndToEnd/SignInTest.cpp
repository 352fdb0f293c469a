// The real client, the real service, and a browser in which the providers' pages are played. The desktop hands addresses
// of our scheme to a second start of the client, which reaches the first one over a session bus of the test's own.
#include "Browser.h"
#include "LocalService.h"
#include "Person.h"
#include "Printing.h"
#include "ProviderPages.h"
#include "SingleInstance.h"
#include "WaitFor.h"

#include <gtest/gtest.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;

class SignIn : public testing::Test {
protected:
    void start(const QString& googleRedirect = u"scheme"_s, const QStringList& options = {u"--dev-providers"_s}) {
        m_service.start(options);
        m_person = std::make_unique<Person>(m_service.port(),
            QJsonObject{{"KorviGoogleClientID", "1-a.apps.googleusercontent.com"}, {"KorviVKAppID", "12345678"},
                {"KorviYandexClientID", "0123456789abcdef0123456789abcdef"}, {"KorviAppleClientID", "com.example.web"},
                {"KorviGoogleRedirect", googleRedirect}, {"KorviGooglePage", m_pages.page(u"google"_s).toString()},
                {"KorviVKPage", m_pages.page(u"vk"_s).toString()},
                {"KorviYandexPage", m_pages.page(u"yandex"_s).toString()},
                {"KorviApplePage", m_pages.page(u"apple"_s).toString()}});
        m_instance = std::make_unique<SingleInstance>();
        ASSERT_TRUE(m_instance->claim({}));
        m_person->startClient();
        m_person->app().follow(*m_instance);
        ASSERT_TRUE(waitFor([this] { return see(u"emailField"_s); }));
    }
    void choose(const QString& provider) { m_person->click(u"provider "_s + provider); }
    bool see(const QString& objectName) { return m_person->see(objectName) != nullptr; }
    AuthViewModel& auth() { return m_person->app().auth(); }
    bool handlersAreDone() {
        return waitFor([this] { return m_browser.handlersAreDone(); });
    }

    LocalService m_service;
    ProviderPages m_pages;
    Browser m_browser;
    std::unique_ptr<Person> m_person;
    std::unique_ptr<SingleInstance> m_instance;
};

TEST_F(SignIn, EveryProviderLeadsToTheMainScreen) {
    start();
    const std::vector<std::pair<QString, QString>> rows{{u"Google"_s, u"anna@google.example"_s},
        {u"Яндекс"_s, u"anna@yandex.example"_s}, {u"VK"_s, u"anna@vk.example"_s},
        {u"Apple"_s, u"anna@apple.example"_s}};
    for (const auto& [provider, email] : rows) {
        choose(provider);
        ASSERT_TRUE(waitFor([this] { return see(u"composer"_s); }))
            << provider.toStdString() << ": " << m_browser.page.toStdString();
        EXPECT_EQ(auth().user()->email, email);
        EXPECT_EQ(auth().errorMessage(), QString());
        EXPECT_TRUE(handlersAreDone());
        auth().logout();
        ASSERT_TRUE(waitFor([this] { return see(u"emailField"_s); }));
    }
    EXPECT_EQ(m_browser.opened.size(), 4);
    EXPECT_EQ(m_browser.passed.size(), 4);
}

TEST_F(SignIn, ARedirectToAPortNeedsNoSecondStart) {
    start(u"loopback"_s);
    choose(u"Google"_s);
    ASSERT_TRUE(waitFor([this] { return see(u"composer"_s); })) << m_browser.page.toStdString();
    EXPECT_EQ(auth().user()->email, u"anna@google.example"_s);
    EXPECT_TRUE(waitFor([this] { return m_browser.page.contains("Можно вернуться в Korvi"); }));
    EXPECT_TRUE(m_browser.passed.isEmpty());
}

TEST_F(SignIn, ACancelledVisitChangesNothingAndItsRedirectComesTooLate) {
    start();
    m_pages.isIdle = true;
    choose(u"Яндекс"_s);
    EXPECT_EQ(auth().waitingProvider(), u"Яндекс"_s);
    ASSERT_TRUE(waitFor([this] { return !m_browser.page.isEmpty(); }));
    // A link on some other page.
    m_browser.startHandler(QUrl(u"korviapp://auth/yandex#access_token=dev-mallory&state=guessed"_s));
    ASSERT_TRUE(handlersAreDone());
    EXPECT_EQ(auth().waitingProvider(), u"Яндекс"_s);
    m_person->press(Qt::Key_Escape);
    EXPECT_EQ(auth().waitingProvider(), QString());
    // The reader goes on in the browser all the same.
    m_pages.isIdle = false;
    m_browser.open(m_browser.opened.first());
    ASSERT_TRUE(waitFor([this] { return m_browser.passed.size() == 2; }));
    ASSERT_TRUE(handlersAreDone());
    settle();
    EXPECT_TRUE(see(u"emailField"_s));
    EXPECT_FALSE(see(u"formError"_s));
    EXPECT_FALSE(auth().isAuthenticated());
    // The next attempt is not troubled by it.
    choose(u"Яндекс"_s);
    EXPECT_TRUE(waitFor([this] { return see(u"composer"_s); }));
}

TEST_F(SignIn, AServiceThatDoesNotTakeItIsNamedOnTheScreen) {
    start(u"scheme"_s, {});
    choose(u"Google"_s);
    ASSERT_TRUE(waitFor([this] { return see(u"formError"_s); }));
    EXPECT_EQ(m_person->see(u"formError"_s)->property("text").toString(),
        u"Не удалось войти через Google. Попробуйте другой способ."_s);
    // The other ways are still open.
    EXPECT_TRUE(m_person->signIn(u"user@example.com"_s, [this] { return m_service.code(); }));
}

}
}
