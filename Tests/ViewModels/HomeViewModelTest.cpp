#include "Shell/HomeViewModel.h"
#include "Backend.h"
#include "Backend/AuthenticationService.h"
#include "Backend/UsersService.h"
#include "Cache/DataCacheManager.h"
#include "Chat/ChatService.h"
#include "Chat/ChatViewModel.h"
#include "Chat/ComposerAttachments.h"
#include "FakeRandom.h"
#include "FakeSocket.h"
#include "FakeWebAuthentication.h"
#include "Shell/AuthViewModel.h"
#include "Shell/DeepLinkHandler.h"
#include "Shell/Onboarding.h"
#include "Shell/ReviewManager.h"
#include "Shell/SceneActivation.h"
#include "SignIn/SocialAuthService.h"
#include "SleepMonitor.h"
#include "TestAttachments.h"

#include <gtest/gtest.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using namespace std::chrono_literals;

QByteArray userNamed(const QByteArray& id) {
    return R"({"id":")" + id + R"(","isBlocked":false,"createdAt":"x","settings_includeChatHistory":true})";
}

class HomeTest : public testing::Test, public Backend {
protected:
    HomeTest() {
        signIn("tok");
        http.answer(u"/sockets/ticket"_s, R"({"ticket":"t"})");
        http.answer(u"/user"_s, userNamed("u1"));
        http.answer(u"/chats"_s,
            R"({"data":[{"id":7,"name":"Семь","mode":"aiplus","createdAt":"c","updatedAt":"u","userId":"u1"}]})");
        http.answer(u"/chats/7/messages"_s, R"({"data":[]})");
    }

    qsizetype requests(const QString& line) { return http.requests().filter(line).size(); }
    qsizetype userRequests() { return http.requests().count(u"GET /user"_s); }
    qsizetype chatLoads() { return http.requests().filter(QRegularExpression(u"^GET /chats(\\?|$)"_s)).size(); }
    void networkReturns() { emit notifications.networkDidBecomeAvailable(); }

    FakeRandom random;
    FakeWebSocketTransport sockets;
    FakeWebAuthentication web;
    AuthenticationService authentication{client};
    UsersService users{client};
    SocialAuthService social{{web, random}, SocialAuthConfiguration::fromInfo(Info()), client.baseURL()};
    ChatService chatService{{client, sockets, virtualTime, random}};
    AuthViewModel auth{{client, authentication, users, social, virtualTime, [this] { home.forgetConversations(); }}};
    DataCacheManager cache{defaults, virtualTime};
    TestAttachments files{*this};
    ComposerAttachments attachments{{files.intake, files.uploader, files.clipboard, random}};
    ChatViewModel chat{
        {chatService, users, cache, defaults, virtualTime, virtualTime, random, notifications, attachments}};
    DeepLinkHandler deepLinks;
    Onboarding onboarding{defaults, [this] { return auth.isAuthenticated(); }};
    HomeViewModel home{{auth, chat, chatService, notifications, deepLinks, onboarding}};
};

TEST_F(HomeTest, TheMainScreenLoadsItsDataThenShowsTheGuide) {
    http.hold(u"/chats"_s);
    auth.start();
    EXPECT_EQ(home.bootstrap().state(), ChatBootstrap::State::running);
    EXPECT_FALSE(onboarding.kind());
    http.open(u"/chats"_s).answer(R"({"data":[]})");
    EXPECT_EQ(home.bootstrap().state(), ChatBootstrap::State::finished);
    EXPECT_EQ(onboarding.kind(), KorviOnboardingKind::app);
    EXPECT_EQ(userRequests(), 2); // the check's and the load's
}

TEST_F(HomeTest, AReturningNetworkBringsTheUserBackWithoutANewSignIn) {
    http.fail(u"/user"_s, URLError::Code::notConnectedToInternet);
    networkReturns(); // before the first check is over: the check will tell
    EXPECT_EQ(userRequests(), 0);
    auth.start();
    EXPECT_TRUE(auth.hasNetworkError());

    home.retryConnection();
    EXPECT_EQ(userRequests(), 2);
    EXPECT_TRUE(auth.hasNetworkError());
    http.hold(u"/user"_s);
    home.retryConnection();
    EXPECT_TRUE(auth.hasNetworkError()) << "the sign-in form would flash up";
    FakeHttp::Exchange& slow = http.last();
    http.answer(u"/user"_s, userNamed("u1"));
    networkReturns();
    EXPECT_TRUE(auth.isAuthenticated());
    EXPECT_TRUE(slow.isCancelled) << "its failure would throw the user out again";
    EXPECT_EQ(token(), "tok");
    auth.logout();
    EXPECT_FALSE(auth.hasNetworkError()) << "leaving leads to the sign-in form";
}

TEST_F(HomeTest, AReturningNetworkLoadsAnewOnTheMainScreenOnly) {
    auth.start();
    sockets.accept();
    ASSERT_EQ(chatLoads(), 1);
    networkReturns();
    EXPECT_EQ(chatLoads(), 2);
    EXPECT_EQ(sockets.count(), 2U) << "the socket is built anew";
    const qsizetype askedForTheUser = userRequests();

    http.hold(u"/chats"_s);
    networkReturns();
    networkReturns(); // one load at a time
    EXPECT_EQ(chatLoads(), 3);

    auth.logout();
    EXPECT_EQ(home.bootstrap().state(), ChatBootstrap::State::idle);
    networkReturns();
    EXPECT_EQ(chatLoads(), 3);
    EXPECT_EQ(userRequests(), askedForTheUser + 1) << "the sign-in form waits for the user, not for the network";
}

TEST_F(HomeTest, AReturningNetworkBuildsTheSocketAnewWhileRestoredAnswersAreStillCompared) {
    defaults.setString(u"conversationsOwner"_s, u"u1"_s);
    defaults.setData(u"endedGenerations"_s,
        R"([{"chatId":7,"textHead":"Ответ","thinkingTail":"","at":)" +
            QByteArray::number(virtualTime.now().toMSecsSinceEpoch()) + "}]");
    http.hold(u"/chats/7/messages"_s);
    auth.start();
    sockets.accept();
    ASSERT_TRUE(http.hasOpen(u"/chats/7/messages"_s));
    networkReturns();
    EXPECT_EQ(sockets.count(), 2U);
}

TEST_F(HomeTest, AChatAskedForFromOutsideOpensAtOnceOrWithTheMainScreen) {
    deepLinks.setPendingChatId(7);
    EXPECT_EQ(deepLinks.pendingChatId(), 7);
    auth.start();
    EXPECT_EQ(chat.activeChatId(), 7);
    EXPECT_EQ(deepLinks.pendingChatId(), std::nullopt);
    chat.createChat();
    deepLinks.setPendingChatId(7); // the same one again
    EXPECT_EQ(chat.activeChatId(), 7);
    deepLinks.setPendingChatId(99); // of another user, or deleted
    EXPECT_EQ(chat.activeChatId(), 7);
    EXPECT_EQ(deepLinks.pendingChatId(), std::nullopt);

    http.hold(u"/chats"_s);
    networkReturns();
    deepLinks.setPendingChatId(8); // a new one, which the load that runs will bring
    EXPECT_EQ(chat.activeChatId(), 7);
    http.answer(u"/chats/8/messages"_s, R"({"data":[]})");
    http.open(u"/chats"_s)
        .answer(R"({"data":[{"id":8,"name":"Восемь","mode":"aiplus","createdAt":"c","updatedAt":"u","userId":"u1"}]})");
    EXPECT_EQ(chat.activeChatId(), 8);
}

TEST_F(HomeTest, ADraftWaitsForItsUserAndForNobodyElse) {
    auth.start();
    chat.setCurrentInput(u"Недописанное"_s);
    const auto comesBack = [this](const QByteArray& id) {
        http.answer(u"/user"_s, "{}", 401);
        const Running<void> leaving([this] { return auth.checkAuth(true); });
        EXPECT_FALSE(auth.isAuthenticated());
        EXPECT_FALSE(onboarding.kind());
        signIn("tok-2");
        http.answer(u"/user"_s, userNamed(id));
        const Running<void> coming([this] { return auth.checkAuth(true); });
        EXPECT_TRUE(auth.isAuthenticated());
    };
    comesBack("u1");
    EXPECT_EQ(chat.currentInput(), u"Недописанное"_s);
    comesBack("u2");
    EXPECT_EQ(chat.currentInput(), QString());
}

TEST_F(HomeTest, ComingToTheFrontRefreshesTheUserButNotRightAfterTheStart) {
    const Info info(QJsonObject{{"CFBundleShortVersionString", "2.5"}});
    ReviewManager reviews(defaults, info, virtualTime, virtualTime);
    SleepMonitor sleep;
    SceneActivation activation(auth, chat, reviews, sleep, virtualTime);
    http.hold(u"/user"_s);
    auth.start();
    activation.becameActive(); // while the first check runs
    EXPECT_EQ(userRequests(), 1);
    http.answer(u"/user"_s, userNamed("u1"));
    http.open(u"/user"_s).answer(userNamed("u1"));
    const qsizetype atStart = userRequests();
    activation.becameActive(); // a window that comes up late
    EXPECT_EQ(userRequests(), atStart);
    virtualTime.advance(10s);
    http.hold(u"/user"_s);
    activation.becameActive();
    EXPECT_EQ(userRequests(), atStart + 1);
    activation.becameActive(); // the first answer is not there yet
    EXPECT_EQ(userRequests(), atStart + 2);
    EXPECT_TRUE(http.at(http.count() - 2).isCancelled);
    http.last().fail(URLError::Code::timedOut);
    EXPECT_TRUE(auth.isAuthenticated());
    EXPECT_EQ(defaults.integer(u"review_sessionCount"_s), 4);
    virtualTime.advance(2s);
    EXPECT_EQ(defaults.string(u"review_lastPromptVersion"_s), u"2.5"_s);
}

TEST_F(HomeTest, ComingBackOrWakingUpAsksWhatBecameOfTheAnswer) {
    const Info info(QJsonObject{{"CFBundleShortVersionString", "2.5"}});
    ReviewManager reviews(defaults, info, virtualTime, virtualTime);
    SleepMonitor sleep;
    SceneActivation activation(auth, chat, reviews, sleep, virtualTime);
    auth.start();
    sockets.accept();
    chat.setCurrentInput(u"вопрос"_s);
    chat.sendMessage();
    activation.becameActive();
    EXPECT_FALSE(chat.isRecovering()) << "it had not been away";
    activation.becameInactive();
    activation.becameActive();
    EXPECT_TRUE(chat.isRecovering());
    virtualTime.advance(3s);
    EXPECT_FALSE(chat.isRecovering());
    emit sleep.awoke();
    EXPECT_TRUE(chat.isRecovering());
}

TEST(ChatBootstrap, LoadsOnceAndAgainOnlyWhenForced) {
    using State = ChatBootstrap::State;
    bool isAuthenticated = false;
    int loads = 0;
    int prefetches = 0;
    std::optional<Resolver<void>> loading;
    ChatBootstrap bootstrap({
        .isAuthenticated = [&] { return isAuthenticated; },
        .loadData = [&]() -> Task<void> {
            ++loads;
            loading.emplace();
            co_await loading->async();
        },
        .prefetchRelatedData = [&] { ++prefetches; },
    });
    const auto run = [&](bool force) {
        return std::make_unique<Running<void>>(
            [&bootstrap, force] { return bootstrap.bootstrapChatDataIfNeeded(force); });
    };
    run(true);
    EXPECT_EQ(loads, 0) << "nobody is signed in";
    isAuthenticated = true;
    const auto first = run(false);
    run(false);
    run(true);
    EXPECT_EQ(loads, 1) << "one at a time";
    loading->resolve();
    EXPECT_EQ(bootstrap.state(), State::finished);
    EXPECT_EQ(prefetches, 1);
    run(false);
    EXPECT_EQ(loads, 1);
    auto forced = run(true);
    EXPECT_EQ(loads, 2);
    forced.reset(); // cancelled: what was loaded before still is
    EXPECT_EQ(bootstrap.state(), State::finished);
    bootstrap.reset();
    auto cancelled = run(false);
    cancelled.reset();
    EXPECT_EQ(bootstrap.state(), State::idle);
    EXPECT_EQ(prefetches, 1);
}

}
}
