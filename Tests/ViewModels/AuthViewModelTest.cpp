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
    auth.logout();
    EXPECT_EQ(disconnects, 1);
    EXPECT_FALSE(auth.isAuthenticated());
    EXPECT_EQ(auth.displayName(), QString());
    EXPECT_EQ(token(), "");
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
