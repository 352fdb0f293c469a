#include "Linux/BrowserAuthentication.h"
#include "FakeRandom.h"
#include "Printing.h"
#include "Running.h"
#include "WaitFor.h"

#include <QHostAddress>
#include <QTcpSocket>

#include <gmock/gmock.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using testing::HasSubstr;
using testing::StartsWith;

const QUrl page(u"https://provider.example/auth?state=1"_s);

class BrowserAuthenticationTest : public testing::Test {
protected:
    FakeRandom random;
    bool hasBrowser = true;
    QList<QUrl> shown;
    int returned = 0;
    BrowserAuthentication browser{[this](const QUrl& url) {
                                      shown.append(url);
                                      return hasBrowser;
                                  },
        random};

    BrowserAuthenticationTest() {
        browser.onReturned = [this] { ++returned; };
    }

    Running<QUrl> visit(const QUrl& redirect, const QUrl& address = page) {
        return Running<QUrl>([=, this]() -> Task<QUrl> {
            WebAuthenticationSession::Visit visit{.page = address,
                .redirect = redirect,
                .isExpected = [](const QUrl& url) { return url.query().contains(u"state=1"_s); }};
            co_return co_await browser.visit(std::move(visit));
        });
    }
    // What a program that connects to the address and says this gets back, up to the end of the connection.
    static std::string say(const QUrl& address, const QByteArray& words) {
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, static_cast<quint16>(address.port()));
        socket.write(words);
        EXPECT_TRUE(waitFor([&] { return socket.state() == QAbstractSocket::UnconnectedState; }));
        return socket.readAll().toStdString();
    }
    static std::string get(const QUrl& address, const QByteArray& target) {
        return say(address, "GET " + target + " HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n");
    }
};

TEST_F(BrowserAuthenticationTest, AUrlOfTheExpectedSchemeEndsTheVisitAndNoOtherDoes) {
    const QUrl redirect(u"korviapp:/"_s);
    EXPECT_FALSE(browser.take(QUrl(u"korviapp://auth?state=1"_s))); // nobody waits
    auto visiting = visit(redirect);
    EXPECT_EQ(shown, QList<QUrl>{page});
    for (const QString& foreign :
        {u"korviapp://auth?state=2"_s, u"other://auth?state=1"_s, u"http://a?state=1"_s, u""_s})
        EXPECT_FALSE(browser.take(QUrl(foreign))) << foreign.toStdString();
    EXPECT_TRUE(visiting.isWaiting());
    EXPECT_TRUE(browser.take(QUrl(u"KorviApp://auth?state=1#token=a%26b"_s)));
    EXPECT_EQ(visiting.value(), QUrl(u"korviapp://auth?state=1#token=a%26b"_s));
    EXPECT_EQ(returned, 1);
    EXPECT_FALSE(browser.take(QUrl(u"korviapp://auth?state=1"_s))); // a second time
}

TEST_F(BrowserAuthenticationTest, ARequestToThePortEndsTheVisitAndGetsAPage) {
    const QUrl address = browser.listen();
    ASSERT_EQ(address.host(), u"127.0.0.1"_s);
    ASSERT_GT(address.path().size(), 30);
    auto visiting = visit(address);
    const QByteArray path = address.path().toLatin1();
    for (const QByteArray& target : {QByteArray("/favicon.ico"), path + "?state=2", QByteArray("/?state=1"),
             path + "x?state=1", "http://evil.example" + path + "?state=1"})
        EXPECT_THAT(get(address, target), StartsWith("HTTP/1.1 404")) << target.toStdString();
    EXPECT_THAT(say(address, "POST " + path + "?state=1 HTTP/1.1\r\n\r\n"), StartsWith("HTTP/1.1 404"));
    EXPECT_THAT(say(address, "\r\n\r\n"), StartsWith("HTTP/1.1 404"));
    EXPECT_EQ(say(address, QByteArray(20000, 'x')), "");
    EXPECT_FALSE(browser.take(QUrl(address.toString() + u"?state=1"_s))); // only through the port
    EXPECT_TRUE(visiting.isWaiting());
    const std::string answer = get(address, path + "?state=1&code=4%2Fx+y");
    EXPECT_THAT(answer, StartsWith("HTTP/1.1 200"));
    EXPECT_THAT(answer, HasSubstr("Можно вернуться в Korvi"));
    EXPECT_EQ(visiting.value().query(QUrl::FullyEncoded), u"state=1&code=4%2Fx+y"_s);
    EXPECT_EQ(returned, 1);
    EXPECT_EQ(get(address, path + "?state=1"), ""); // the port is closed
}

TEST_F(BrowserAuthenticationTest, ANewVisitAndAChangedMindEndTheOldOne) {
    const QUrl first = browser.listen();
    auto old = visit(first);
    const QUrl second = browser.listen();
    EXPECT_EQ(old.error<WebAuthenticationError>()->code, WebAuthenticationError::Code::cancelled);
    EXPECT_NE(first, second);
    auto visiting = visit(second);
    EXPECT_EQ(get(first, first.path().toLatin1() + "?state=1"), "");
    visiting.cancel();
    EXPECT_EQ(get(second, second.path().toLatin1() + "?state=1"), "");
    auto byScheme = visit(QUrl(u"korviapp:/"_s));
    byScheme.cancel();
    EXPECT_FALSE(browser.take(QUrl(u"korviapp://auth?state=1"_s)));
    EXPECT_EQ(returned, 0);
}

TEST_F(BrowserAuthenticationTest, WithoutABrowserOrASafePageNothingBegins) {
    hasBrowser = false;
    const QUrl address = browser.listen();
    EXPECT_EQ(visit(address).error<WebAuthenticationError>()->code, WebAuthenticationError::Code::startFailed);
    EXPECT_EQ(get(address, address.path().toLatin1() + "?state=1"), "");
    hasBrowser = true;
    shown.clear();
    for (const QString& unsafe : {u"http://provider.example/"_s, u"file:///etc/passwd"_s, u"ftp://127.0.0.1/"_s, u""_s})
        EXPECT_TRUE(visit(QUrl(u"korviapp:/"_s), QUrl(unsafe)).error<WebAuthenticationError>()) << unsafe.toStdString();
    EXPECT_TRUE(shown.isEmpty());
}

TEST_F(BrowserAuthenticationTest, AProgramThatSaysNothingDoesNotKeepThePort) {
    auto own = std::make_unique<BrowserAuthentication>([](const QUrl&) { return true; }, random);
    const QUrl address = own->listen();
    QTcpSocket silent;
    silent.connectToHost(QHostAddress::LocalHost, static_cast<quint16>(address.port()));
    ASSERT_TRUE(waitFor([&] { return silent.state() == QAbstractSocket::ConnectedState; }));
    settle();
    own.reset();
    EXPECT_TRUE(waitFor([&] { return silent.state() == QAbstractSocket::UnconnectedState; }));
}

}
}
