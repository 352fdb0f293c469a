#include "Shell/AuthViewModel.h"
#include "Backend.h"
#include "Backend/AuthenticationService.h"
#include "Backend/UsersService.h"
#include "FakeRandom.h"
#include "FakeWebAuthentication.h"
#include "SignIn/SocialAuthService.h"

#include <gtest/gtest.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using namespace std::chrono_literals;

const QByteArray user =
    R"({"id":"u1","email":"a@b.c","isBlocked":false,"createdAt":"x","settings_includeChatHistory":true,"firstName":"Анна","lastName":"Ким"})";
const QByteArray signedIn =
    R"({"id":"u1","isBlocked":false,"createdAt":"x","settings_includeChatHistory":true,"session":{"id":"s","isTrusted":true,"opaqueToken":"tok-1","createdAt":"x"}})";

const QJsonObject clients{
    {"KorviGoogleClientID", "1-a.apps.googleusercontent.com"},
    {"KorviVKAppID", "12345678"},
    {"KorviYandexClientID", "0123456789abcdef0123456789abcdef"},
    {"KorviAppleClientID", "com.example.web"},
};

class AuthViewModelTest : public testing::Test, public Backend {
protected:
    AuthenticationService authentication{client};
    UsersService users{client};
    FakeWebAuthentication web;
    FakeRandom random;
    SocialAuthService social{{web, random}, SocialAuthConfiguration::fromInfo(Info(clients)), client.baseURL()};
    int disconnects = 0;
    AuthViewModel auth{{client, authentication, users, social, virtualTime, [this] { ++disconnects; }}};

    void enterCode() {
        http.answer(u"/auth/email"_s, "{}");
        auth.requestEmailCode(u" a@b.c "_s);
    }
};

TEST_F(AuthViewModelTest, ACodeLeadsToTheMainScreenAndTheTokenIsKept) {
    enterCode();
    EXPECT_TRUE(auth.isEnterCodeStep());
    EXPECT_EQ(auth.email(), u"a@b.c"_s);
    EXPECT_EQ(QJsonDocument::fromJson(http.last().request.body).object(), (QJsonObject{{"email", "a@b.c"}}));
    http.answer(u"/auth/email/verify"_s, signedIn);
    http.answer(u"/user"_s, user);
    auth.validateCode(u"4719"_s);
    EXPECT_TRUE(auth.isAuthenticated());
    EXPECT_FALSE(auth.isEnterCodeStep());
    EXPECT_TRUE(virtualTime.dueIn().empty()); // the countdown has ended
    EXPECT_FALSE(auth.isLoading());
    EXPECT_EQ(auth.displayName(), u"Анна Ким"_s);
    EXPECT_EQ(auth.initials(), u"АК"_s);
    EXPECT_EQ(token(), "tok-1");
    EXPECT_EQ(http.last().header("Authorization"), "Bearer tok-1");
}

TEST_F(AuthViewModelTest, WhatIsWrongIsSaidInTheWordsOfItsCause) {
    struct Row {
        const char* what;
        std::function<void()> script;
        QString message;
    };
    const QString verify = u"/auth/email/verify"_s;
    const QString wrong = u"Неверный код. Попробуйте ещё раз."_s;
    const std::vector<Row> rows{
        {"400", [&] { http.answer(verify, "{}", 400); }, wrong},
        {"401", [&] { http.answer(verify, "{}", 401); }, wrong},
        {"500", [&] { http.answer(verify, "{}", 500); }, u"Ошибка сервера. Попробуйте позже."_s},
        {"time out", [&] { http.fail(verify, URLError::Code::timedOut); }, wrong},
        {"not JSON", [&] { http.answer(verify, "nonsense"); }, wrong},
    };
    enterCode();
    for (const Row& row : rows) {
        row.script();
        auth.validateCode(u"0000"_s);
        EXPECT_EQ(auth.errorMessage(), row.message) << row.what;
        EXPECT_TRUE(auth.isEnterCodeStep()) << row.what;
        EXPECT_FALSE(auth.isLoading()) << row.what;
    }
    http.answer(u"/auth/email"_s, "{}", 429);
    auth.resendCode();
    EXPECT_EQ(auth.errorMessage(), u"Не удалось отправить код. Проверьте email."_s);
}

TEST_F(AuthViewModelTest, ANewCodeCanBeAskedForAfter60Seconds) {
    enterCode();
    EXPECT_EQ(auth.countdown()->secondsLeft(), 60);
    virtualTime.advance(59s);
    EXPECT_EQ(auth.countdown()->secondsLeft(), 1);
    virtualTime.advance(1s);
    EXPECT_EQ(auth.countdown()->secondsLeft(), 0);
    EXPECT_TRUE(virtualTime.dueIn().empty()); // nothing ticks on
    auth.resendCode();
    EXPECT_EQ(auth.countdown()->secondsLeft(), 60);
    auth.changeEmail();
    EXPECT_FALSE(auth.isEnterCodeStep());
    EXPECT_TRUE(virtualTime.dueIn().empty());
}

TEST_F(AuthViewModelTest, TheStartTellsASignedOutUserFromOneWithoutANetwork) {
    struct Row {
        const char* what;
        std::function<void()> script;
        bool isAuthenticated;
        bool hasNetworkError;
        bool keepsToken;
    };
    const QString path = u"/user"_s;
    const std::vector<Row> rows{
        {"known", [&] { http.answer(path, user); }, true, false, true},
        {"time out", [&] { http.fail(path, URLError::Code::timedOut); }, false, true, true},
        {"no host", [&] { http.fail(path, URLError::Code::cannotFindHost); }, false, true, true},
        {"no TLS", [&] { http.fail(path, URLError::Code::secureConnectionFailed); }, false, false, true},
        {"server error", [&] { http.answer(path, "", 500); }, false, false, true},
        {"firewall page", [&] { http.answer(path, "<html>", 200, "text/html"); }, false, false, true},
        {"dead token", [&] { http.answer(path, "", 401); }, false, false, false},
    };
    for (const Row& row : rows) {
        signIn("tok-0");
        row.script();
        AuthViewModel fresh({client, authentication, users, social, virtualTime, [] {}});
        fresh.start();
        EXPECT_TRUE(fresh.isInitialCheckComplete()) << row.what;
        EXPECT_EQ(fresh.isAuthenticated(), row.isAuthenticated) << row.what;
        EXPECT_EQ(fresh.hasNetworkError(), row.hasNetworkError) << row.what;
        EXPECT_EQ(fresh.errorMessage(), QString()) << row.what;
        EXPECT_EQ(!token().isEmpty(), row.keepsToken) << row.what;
    }
}

TEST_F(AuthViewModelTest, LeavingForgetsTheUserAndAFailingRefreshDoesNot) {
    signIn("tok-0");
    http.answer(u"/user"_s, user);
    auth.start();
    http.answer(u"/user"_s, "", 503);
    const Running<void> refreshing([&] { return auth.refreshUserData(); });
    EXPECT_TRUE(refreshing.isDone());
    EXPECT_TRUE(auth.isAuthenticated());
    EXPECT_EQ(auth.displayName(), u"Анна Ким"_s);
    http.hold(u"/user"_s);
    const Running<void> late([&] { return auth.refreshUserData(); });
    auth.logout();
    http.open(u"/user"_s).answer(user);
    EXPECT_TRUE(late.isDone());
    EXPECT_EQ(disconnects, 1);
    EXPECT_FALSE(auth.isAuthenticated());
    EXPECT_EQ(auth.displayName(), QString());
    EXPECT_EQ(token(), "");
}

TEST_F(AuthViewModelTest, EveryProviderLeadsToTheMainScreen) {
    struct Row {
        QString provider;
        QString redirect;
        QString path;
    };
    const std::vector<Row> rows{
        {u"Google"_s, u"x:/?state=STATE&code=c"_s, u"POST /auth/google"_s},
        {u"VK"_s, u"x:/?silentToken=t&uuid=UUID"_s, u"POST /auth/vk"_s},
        {u"Яндекс"_s, u"x:/#state=STATE&access_token=t"_s, u"POST /auth/yandex"_s},
        {u"Apple"_s, u"x:/?state=STATE&id_token=e30.eyJzdWIiOiIxIn0.s"_s, u"POST /auth/apple"_s},
    };
    EXPECT_EQ(auth.configuredProviders(), (QStringList{u"Google"_s, u"Яндекс"_s, u"VK"_s, u"Apple"_s}));
    http.answer(u"/user"_s, user);
    for (const Row& row : rows) {
        auth.signInWith(row.provider);
        EXPECT_EQ(auth.waitingProvider(), row.provider);
        EXPECT_FALSE(auth.isLoading()); // an e-mail address can still be entered
        ASSERT_TRUE(web.redirect(row.redirect));
        EXPECT_EQ(auth.waitingProvider(), QString());
        EXPECT_TRUE(auth.isLoading());
        EXPECT_EQ(http.last().line(), row.path);
        http.last().answer(signedIn);
        EXPECT_TRUE(auth.isAuthenticated()) << row.provider.toStdString();
        EXPECT_FALSE(auth.isLoading());
        EXPECT_EQ(token(), "tok-1");
        auth.logout();
    }
}

TEST_F(AuthViewModelTest, AFailureOfAProviderIsSaidInTheWordsOfItsCause) {
    struct Way {
        QString name;
        QString path;
        std::function<Task<void>()> login;
    };
    const std::vector<Way> ways{
        {u"Apple"_s, u"/auth/apple"_s, [&] { return auth.loginWithApple(u"t"_s, u"u"_s, u"n"_s); }},
        {u"VK"_s, u"/auth/vk"_s, [&] { return auth.loginWithVK(u"t"_s, u"u"_s, {}, {}); }},
        {u"Яндекс"_s, u"/auth/yandex"_s, [&] { return auth.loginWithYandex(u"t"_s); }},
        {u"Google"_s, u"/auth/google"_s, [&] { return auth.loginWithGoogle({}, u"c"_s, u"r"_s); }},
    };
    struct Row {
        std::function<void(const QString&)> script;
        QString apple; // "*": the same as for the others
        QString vkAndYandex;
    };
    const QString another = u"Не удалось войти через * Попробуйте другой способ."_s;
    const std::vector<Row> rows{
        {[&](auto& path) { http.answer(path, R"({"message":"Нет %1 и %2"})", 403); }, {},
            u"*: сервер ответил 403. Нет %1 и %2"_s},
        {[&](auto& path) { http.answer(path, QByteArray(200, 'x'), 500); }, {},
            u"*: сервер ответил 500. "_s + QString(120, u'x')},
        {[&](auto& path) { http.answer(path, "\xff", 502); }, {}, u"*: сервер ответил 502."_s},
        {[&](auto& path) { http.answer(path, R"({"id":1})"); },
            u"Apple: ошибка разбора ответа — id: a string is required"_s, another},
        {[&](auto& path) { http.answer(path, "<html>", 200, "text/html"); }, {}, another},
        {[&](auto& path) { http.fail(path, URLError::Code::timedOut, u"Время ожидания истекло."_s); }, {},
            u"*: Время ожидания истекло."_s},
    };
    const auto in = [](QString text, const QString& name) {
        return text.replace(u"через *"_s, u"через "_s + name + u'.').replace(u'*', name);
    };
    for (const Row& row : rows) {
        for (const Way& way : ways) {
            row.script(way.path);
            const Running<void> running(way.login);
            const QString expected = way.name == u"Google"_s     ? in(another, way.name)
                : way.name == u"Apple"_s && !row.apple.isEmpty() ? row.apple
                                                                 : in(row.vkAndYandex, way.name);
            EXPECT_EQ(auth.errorMessage(), expected);
            EXPECT_FALSE(auth.isLoading());
            EXPECT_FALSE(auth.isAuthenticated());
            EXPECT_EQ(token(), QByteArray());
        }
    }
}

TEST_F(AuthViewModelTest, AChangedMindChangesNothingOnTheScreen) {
    struct Row {
        const char* what;
        std::function<void()> end;
        QString message;
    };
    const std::vector<Row> rows{
        {"taken back", [&] { auth.cancelSignIn(); }, QString()},
        {"cancelled by the browser", [&] { web.cancel(); }, QString()},
        {"cancelled at Apple", [&] { web.redirect(u"x:/?state=STATE&error=user_cancelled_authorize"_s); }, QString()},
        {"nothing came", [&] { web.redirect(u"x:/?state=STATE"_s); },
            u"Не удалось войти через Apple. Попробуйте другой способ."_s},
    };
    for (const Row& row : rows) {
        auth.signInWith(u"Apple"_s);
        row.end();
        EXPECT_EQ(auth.waitingProvider(), QString()) << row.what;
        EXPECT_EQ(auth.errorMessage(), row.message) << row.what;
        EXPECT_FALSE(web.isOpen()) << row.what;
        EXPECT_FALSE(auth.isLoading()) << row.what;
    }
    web.hasBrowser = false;
    auth.signInWith(u"Яндекс"_s);
    EXPECT_EQ(auth.errorMessage(), u"Не удалось войти через Яндекс. Попробуйте другой способ."_s);
    EXPECT_EQ(http.count(), 0U);
}

TEST_F(AuthViewModelTest, ANewAttemptTakesTheOldOnesPlace) {
    auth.signInWith(u"Google"_s);
    auth.signInWith(u"VK"_s);
    EXPECT_EQ(auth.waitingProvider(), u"VK"_s);
    EXPECT_TRUE(web.isOpen());
    auth.signInWith(u"Unknown"_s);
    EXPECT_EQ(auth.waitingProvider(), u"VK"_s);
    enterCode(); // the address is another way
    EXPECT_EQ(auth.waitingProvider(), QString());
    EXPECT_FALSE(web.isOpen());
    EXPECT_TRUE(auth.isEnterCodeStep());
    EXPECT_EQ(auth.errorMessage(), QString());
}

TEST_F(AuthViewModelTest, ADeletedAccountSignsOutAndAFailureSaysWhy) {
    struct Row {
        std::function<void()> script;
        QString message;
    };
    const QString later = u"Не удалось удалить аккаунт. Попробуйте позже."_s;
    const QString body = u"Произошла ошибка. Попробуйте позже."_s;
    const std::vector<Row> rows{
        {[&] { http.answer(u"/user"_s, R"({"message":"Есть неоплаченный счёт."})", 409); },
            u"Есть неоплаченный счёт."_s},
        {[&] { http.answer(u"/user"_s, "\xff", 500); }, body},
        {[&] { http.answer(u"/user"_s, "", 500); }, body},
        {[&] { http.answer(u"/user"_s, "", 0); }, later},
        {[&] { http.fail(u"/user"_s, URLError::Code::notConnectedToInternet); },
            u"Не удалось удалить аккаунт. Проверьте подключение к интернету."_s},
    };
    signIn("tok-0");
    http.answer(u"/user"_s, user);
    auth.start();
    EXPECT_EQ(auth.deleteAccountErrorTitle(), u"Не удалось удалить аккаунт"_s);
    for (const Row& row : rows) {
        row.script();
        auth.performDeleteAccount();
        EXPECT_EQ(auth.deleteAccountError(), row.message);
        EXPECT_FALSE(auth.isDeletingAccount());
        EXPECT_TRUE(auth.isAuthenticated());
        auth.dismissDeleteAccountError();
        EXPECT_EQ(auth.deleteAccountError(), QString());
    }
    http.hold(u"/user"_s);
    auth.performDeleteAccount();
    auth.performDeleteAccount(); // impatient
    EXPECT_TRUE(auth.isDeletingAccount());
    EXPECT_EQ(http.last().line(), u"DELETE /user"_s);
    http.open(u"/user"_s).answer("");
    EXPECT_FALSE(http.hasOpen(u"/user"_s));
    EXPECT_FALSE(auth.isDeletingAccount());
    EXPECT_FALSE(auth.isAuthenticated());
    EXPECT_EQ(auth.deleteAccountError(), QString());
    EXPECT_EQ(token(), "");
    EXPECT_EQ(disconnects, 1);
}

TEST_F(AuthViewModelTest, AnswersThatComeAfterTheEndTouchNothing) {
    auto doomed = std::make_unique<AuthViewModel>(
        AuthViewModel::Dependencies{client, authentication, users, social, virtualTime, [] {}});
    doomed->start();
    auto& open = http.open(u"/user"_s);
    doomed.reset();
    EXPECT_TRUE(open.isCancelled);
    open.answer(user);
}

}
}
