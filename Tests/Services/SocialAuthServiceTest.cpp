#include "SignIn/SocialAuthService.h"
#include "FakeRandom.h"
#include "FakeWebAuthentication.h"
#include "Info.h"
#include "LogCapture.h"
#include "Printing.h"
#include "Running.h"
#include "SignIn/CallbackParameters.h"
#include "SignIn/Nonce.h"

#include <gtest/gtest.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using Code = SocialAuthError::Code;

const QString base = u"https://service.example/api/v1"_s;
const QString googleClient = u"1-a.apps.googleusercontent.com"_s;
const QString googleBack = u"com.googleusercontent.apps.1-a:/oauth2callback"_s;

QJsonObject info(const QJsonObject& more = {}) {
    QJsonObject values{{"KorviGoogleClientID", googleClient}, {"KorviVKAppID", "12345678"},
        {"KorviYandexClientID", "0123456789abcdef0123456789abcdef"}, {"KorviAppleClientID", "com.example.web"}};
    for (auto it = more.begin(); it != more.end(); ++it)
        values.insert(it.key(), it.value());
    return values;
}

// An identity token about somebody.
QString identityToken(const QByteArray& claims) {
    return u"e30."_s + QString::fromLatin1(claims.toBase64(QByteArray::Base64UrlEncoding)) + u".sig"_s;
}

class SocialAuthServiceTest : public testing::Test {
protected:
    FakeWebAuthentication web;
    FakeRandom random;
    SocialAuthService service = serviceWith(info());

    SocialAuthService serviceWith(const QJsonObject& values) {
        return SocialAuthService({web, random}, SocialAuthConfiguration::fromInfo(Info(values)), base);
    }
    template <class T>
    Running<T> begin(SocialAuthService& from, Task<T> (SocialAuthService::*way)()) {
        return Running<T>([&from, way] { return (from.*way)(); });
    }
    template <class T>
    Running<T> begin(Task<T> (SocialAuthService::*way)()) {
        return begin(service, way);
    }
    QString page() const { return web.pages.last().toString(QUrl::RemoveQuery); }
    template <class T>
    static std::optional<Code> failure(const Running<T>& running) {
        const auto error = running.template error<SocialAuthError>();
        return error ? std::optional(error->code) : std::nullopt;
    }
};

TEST_F(SocialAuthServiceTest, GoogleGivesACodeForTheReversedClientIdentifier) {
    const auto visiting = begin(&SocialAuthService::signInWithGoogle);
    EXPECT_EQ(page(), u"https://accounts.google.com/o/oauth2/v2/auth"_s);
    EXPECT_EQ(web.query(u"client_id"_s), googleClient);
    EXPECT_EQ(web.query(u"redirect_uri"_s), googleBack);
    EXPECT_EQ(web.query(u"response_type"_s), u"code"_s);
    EXPECT_EQ(web.query(u"scope"_s), u"openid email profile"_s);
    ASSERT_TRUE(web.redirect(googleBack + u"?state=STATE&code=4%2F0A=b"_s));
    EXPECT_EQ(visiting.value(), (GoogleAuthResult{u"4/0A=b"_s, googleBack}));
}

TEST_F(SocialAuthServiceTest, GoogleCanComeBackToAPort) {
    auto loopback = serviceWith(info({{"KorviGoogleRedirect", "loopback"}}));
    const auto visiting = begin(loopback, &SocialAuthService::signInWithGoogle);
    EXPECT_EQ(web.query(u"redirect_uri"_s), u"http://127.0.0.1:4711/back"_s);
    ASSERT_TRUE(web.redirect(u"http://127.0.0.1:4711/back?state=STATE&code=c"_s));
    EXPECT_EQ(visiting.value(), (GoogleAuthResult{u"c"_s, u"http://127.0.0.1:4711/back"_s}));
    web.hasPort = false;
    EXPECT_EQ(failure(begin(loopback, &SocialAuthService::signInWithGoogle)), Code::sessionStartFailed);
}

TEST_F(SocialAuthServiceTest, VKGivesATokenAndPerhapsAName) {
    struct Row {
        QString redirect;
        VKAuthResult result;
    };
    const QString uuid = u"00000001-0000-0000-0000-000000000000"_s;
    const std::vector<Row> rows{
        {u"korviapp://auth/vk?silentToken=t&uuid=UUID&firstName=%D0%90%D0%BD%D0%BD%D0%B0&lastName=%D0%9A%D0%B8%D0%BC"_s,
            {u"t"_s, {}, u"Анна"_s, u"Ким"_s}},
        {u"korviapp://auth/vk?silentToken=t&uuid=UUID"_s, {u"t"_s, {}, std::nullopt, std::nullopt}},
        {u"korviapp://auth/vk?state=STATE&silentToken=t&uuid=own"_s, {u"t"_s, u"own"_s, std::nullopt, std::nullopt}},
    };
    for (const Row& row : rows) {
        const auto visiting = begin(&SocialAuthService::signInWithVK);
        EXPECT_EQ(page(), u"https://id.vk.com/auth"_s);
        EXPECT_EQ(web.query(u"app_id"_s), u"12345678"_s);
        EXPECT_EQ(web.query(u"response_type"_s), u"silent_token"_s);
        EXPECT_EQ(web.query(u"redirect_uri"_s), base + u"/auth/vk/mobile-callback"_s);
        VKAuthResult expected = row.result;
        if (expected.uuid.isEmpty())
            expected.uuid = web.query(u"uuid"_s);
        EXPECT_FALSE(QUuid(web.query(u"uuid"_s)).isNull());
        ASSERT_TRUE(web.redirect(row.redirect));
        EXPECT_EQ(visiting.value(), expected) << row.redirect.toStdString();
    }
}

TEST_F(SocialAuthServiceTest, YandexGivesItsTokenInTheQueryOrInTheFragment) {
    for (const QString& redirect : {u"korviapp://auth/yandex#access_token=y0%5FA&state=STATE&expires_in=1"_s,
             u"korviapp://auth/yandex?access_token=y0_A&state=STATE"_s}) {
        const auto visiting = begin(&SocialAuthService::signInWithYandex);
        EXPECT_EQ(page(), u"https://oauth.yandex.ru/authorize"_s);
        EXPECT_EQ(web.query(u"client_id"_s), u"0123456789abcdef0123456789abcdef"_s);
        EXPECT_EQ(web.query(u"response_type"_s), u"token"_s);
        EXPECT_EQ(web.query(u"redirect_uri"_s), base + u"/auth/yandex/mobile-callback"_s);
        ASSERT_TRUE(web.redirect(redirect));
        EXPECT_EQ(visiting.value(), u"y0_A"_s);
    }
}

TEST_F(SocialAuthServiceTest, AppleGivesATokenForTheNonceAndWhomItIsAbout) {
    const auto visiting = begin(&SocialAuthService::signInWithApple);
    EXPECT_EQ(page(), u"https://appleid.apple.com/auth/authorize"_s);
    EXPECT_EQ(web.query(u"response_type"_s), u"code id_token"_s);
    EXPECT_EQ(web.query(u"response_mode"_s), u"form_post"_s);
    EXPECT_EQ(web.query(u"scope"_s), u"name email"_s);
    EXPECT_EQ(web.query(u"redirect_uri"_s), base + u"/auth/apple/mobile-callback"_s);
    const QString token = identityToken(R"({"sub":"001.abc","name":"Анна?>"})");
    ASSERT_TRUE(web.redirect(u"korviapp://auth/apple?state=STATE&code=c&id_token="_s + token));
    const AppleAuthResult result = visiting.value();
    EXPECT_EQ(result.identityToken, token);
    EXPECT_EQ(result.userID, u"001.abc"_s);
    EXPECT_EQ(result.nonce.size(), 32);
    EXPECT_EQ(web.query(u"nonce"_s), sha256Hex(result.nonce));
}

TEST_F(SocialAuthServiceTest, ARedirectWithoutWhatWasAskedForFails) {
    struct Row {
        std::function<std::optional<Code>(const QString&)> run;
        QString redirect;
        Code code;
    };
    const auto way = [this](auto method) {
        return [this, method](const QString& redirect) {
            const auto visiting = begin(method);
            EXPECT_TRUE(web.redirect(redirect)) << redirect.toStdString();
            return failure(visiting);
        };
    };
    const auto google = way(&SocialAuthService::signInWithGoogle);
    const auto vk = way(&SocialAuthService::signInWithVK);
    const auto yandex = way(&SocialAuthService::signInWithYandex);
    const auto apple = way(&SocialAuthService::signInWithApple);
    const QString ours = u"korviapp://auth?state=STATE"_s;
    const std::vector<Row> rows{
        {google, googleBack + u"?state=STATE&error=access_denied"_s, Code::noToken},
        {google, googleBack + u"?state=STATE&code="_s, Code::noToken},
        {google, googleBack + u"?code=stolen"_s, Code::noToken}, // does not prove that it is ours
        {google, googleBack, Code::noToken},
        {vk, ours + u"&silentToken=t"_s, Code::noToken},
        {vk, ours + u"&uuid=UUID"_s, Code::noToken},
        {yandex, ours + u"&error=access_denied&error_description=no&access_token=t"_s, Code::noToken},
        {yandex, u"korviapp://auth#state=STATE&token_type=bearer"_s, Code::noToken},
        {yandex, u"korviapp://auth#access_token=foreign"_s, Code::noToken},
        {apple, ours + u"&code=c"_s, Code::noToken},
        {apple, ours + u"&id_token=nonsense"_s, Code::noToken},
        {apple, ours + u"&id_token="_s + identityToken(R"({"sub":1})"), Code::noToken},
        {apple, ours + u"&error=user_cancelled_authorize"_s, Code::cancelled},
    };
    for (const Row& row : rows)
        EXPECT_EQ(row.run(row.redirect), row.code) << row.redirect.toStdString();
}

TEST_F(SocialAuthServiceTest, AForeignRedirectIsIgnoredAndNoValueGoesIntoTheLog) {
    const LogCapture log;
    const auto google = begin(&SocialAuthService::signInWithGoogle);
    EXPECT_FALSE(web.redirect(googleBack + u"?state=another&code=c"_s));
    EXPECT_TRUE(google.isWaiting());
    const auto vk = begin(&SocialAuthService::signInWithVK);
    EXPECT_FALSE(web.redirect(u"korviapp://auth/vk?silentToken=t&uuid=another"_s));
    EXPECT_TRUE(web.redirect(u"korviapp://auth/vk?uuid=UUID&firstName=Secret"_s));
    EXPECT_EQ(log.count(u"firstName"_s), 1);
    EXPECT_EQ(log.count(u"Secret"_s), 0);
}

TEST_F(SocialAuthServiceTest, EveryVisitHasAStateOfItsOwn) {
    QStringList states;
    for (int i = 0; i < 3; ++i) {
        const auto visiting = begin(&SocialAuthService::signInWithYandex);
        states.append(web.query(u"state"_s));
    }
    states.removeDuplicates();
    EXPECT_EQ(states.size(), 3);
}

TEST_F(SocialAuthServiceTest, WhatThisBuildDoesNotKnowDoesNotBegin) {
    auto unknown = serviceWith({{"KorviYandexClientID", "  "}, {"KorviGoogleClientID", "ыъ"}});
    for (const SocialProvider provider : socialProviders)
        EXPECT_FALSE(unknown.isConfigured(provider)) << nameOf(provider).toStdString();
    EXPECT_EQ(failure(begin(unknown, &SocialAuthService::signInWithYandex)), Code::notConfigured);
    EXPECT_EQ(failure(begin(unknown, &SocialAuthService::signInWithGoogle)), Code::notConfigured);
    EXPECT_TRUE(web.pages.isEmpty());
    web.hasBrowser = false;
    EXPECT_EQ(failure(begin(&SocialAuthService::signInWithVK)), Code::sessionStartFailed);
}

TEST_F(SocialAuthServiceTest, OnlyThisMachineMayStandInForAProvider) {
    auto redirected = serviceWith(
        info({{"KorviVKPage", "http://127.0.0.1:9/vk"}, {"KorviYandexPage", "https://evil.example/authorize"}}));
    const auto vk = begin(redirected, &SocialAuthService::signInWithVK);
    EXPECT_EQ(page(), u"http://127.0.0.1:9/vk"_s);
    const auto yandex = begin(redirected, &SocialAuthService::signInWithYandex);
    EXPECT_EQ(page(), u"https://oauth.yandex.ru/authorize"_s);
}

TEST(SignInNonce, Has32CharactersOfAnAlphabetWithoutTheCapitalW) {
    EXPECT_EQ(qstrlen(nonceAlphabet), 64U);
    EXPECT_EQ(QByteArray(nonceAlphabet).indexOf('W'), -1);
    FakeRandom random;
    random.fraction = 0;
    EXPECT_EQ(makeNonce(random), QString(32, u'0'));
    random.fraction = 1;
    EXPECT_EQ(makeNonce(random), QString(32, u'_'));
    EXPECT_EQ(sha256Hex(u"abc"_s), u"ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"_s);
}

TEST(CallbackParameters, AFragmentIsReadPairByPair) {
    using Map = QMap<QString, QString>;
    const std::vector<std::pair<QString, Map>> rows{
        {u""_s, {}},
        {u"a=1&b=2"_s, {{u"a"_s, u"1"_s}, {u"b"_s, u"2"_s}}},
        {u"a=1=2&b&=&c="_s, {{u""_s, u""_s}, {u"c"_s, u""_s}}},
        {u"a=%D0%90%26&b=%zz&c=%FF&d=100%"_s,
            {{u"a"_s, u"А&"_s}, {u"b"_s, u"%zz"_s}, {u"c"_s, u"%FF"_s}, {u"d"_s, u"100%"_s}}},
    };
    for (const auto& [fragment, expected] : rows)
        EXPECT_EQ(parseURLFragment(fragment), expected) << fragment.toStdString();
    EXPECT_EQ(callbackParameters(QUrl(u"korviapp://x?a=1=&b=q#b=f"_s)), (Map{{u"a"_s, u"1="_s}, {u"b"_s, u"f"_s}}));
}

}
}
