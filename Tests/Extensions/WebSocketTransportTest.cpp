#include "Linux/QtWebSocketTransport.h"
#include "Printing.h"
#include "WaitFor.h"

#include <QCryptographicHash>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTcpSocket>
#include <QWebSocket>
#include <QWebSocketServer>

#include <gmock/gmock.h>

#include <sys/socket.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

class WebSocketTransportTest : public testing::Test {
protected:
    WebSocketTransportTest() {
        EXPECT_TRUE(server.listen(QHostAddress::LocalHost));
        EXPECT_TRUE(raw.listen(QHostAddress::LocalHost));
        QObject::connect(&server, &QWebSocketServer::newConnection, &server, [this] {
            peer.reset(server.nextPendingConnection());
            QObject::connect(peer.get(), &QWebSocket::textMessageReceived, peer.get(),
                [this](const QString& text) { arrived.append(text); });
        });
        QObject::connect(&raw, &QTcpServer::newConnection, &raw, [this] {
            rawPeer = raw.nextPendingConnection();
            QObject::connect(rawPeer, &QTcpSocket::readyRead, rawPeer, [this] {
                if (answer.isEmpty())
                    return;
                rawPeer->readAll();
                rawPeer->write(std::exchange(answer, {}));
            });
        });
    }
    QUrl rawUrl() const { return QUrl(u"ws://127.0.0.1:%1/ws"_s.arg(raw.serverPort())); }

    void open(const QUrl& url, std::chrono::milliseconds timeout = 10s, HttpHeaders headers = {}) {
        lines.clear();
        inCall = true;
        socket = transport.open({.url = url, .headers = std::move(headers), .openTimeout = timeout});
        inCall = false;
        auto* s = socket.get();
        const auto note = [this](const QString& line) { lines.append(inCall ? u"INSIDE A CALL "_s + line : line); };
        QObject::connect(s, &WebSocketConnection::opened, s, [note] { note(u"opened"_s); });
        QObject::connect(
            s, &WebSocketConnection::messageReceived, s, [note](const QString& t) { note(u"got "_s + t); });
        QObject::connect(s, &WebSocketConnection::sent, s, [note](const QString& t) { note(u"sent "_s + t.left(20)); });
        QObject::connect(
            s, &WebSocketConnection::sendFailed, s, [note](const QString& t) { note(u"unsent "_s + t.left(20)); });
        QObject::connect(s, &WebSocketConnection::pong, s, [note] { note(u"pong"_s); });
        QObject::connect(s, &WebSocketConnection::pingFailed, s, [note] { note(u"ping failed"_s); });
        QObject::connect(s, &WebSocketConnection::closed, s,
            [note](int code, const QString& reason) { note(u"closed %1 %2"_s.arg(code).arg(reason)); });
        QObject::connect(s, &WebSocketConnection::failed, s,
            [note](const URLError& e) { note(u"failed %1"_s.arg(static_cast<int>(e.code))); });
        QObject::connect(
            s, &WebSocketConnection::refused, s, [note](int status) { note(u"refused %1"_s.arg(status)); });
    }
    void openToPeer() {
        open(server.serverUrl());
        ASSERT_TRUE(waitFor([&] { return lines.contains(u"opened"_s) && peer; }));
        lines.clear();
    }
    void send(const QString& text) {
        inCall = true;
        socket->sendText(text);
        inCall = false;
    }
    bool ended() const { return lines.filter(QRegularExpression(u"^(closed|failed|refused)"_s)).size() > 0; }
    static QString failed(URLError::Code code) { return u"failed %1"_s.arg(static_cast<int>(code)); }

    QWebSocketServer server{u"test"_s, QWebSocketServer::NonSecureMode};
    QTcpServer raw;
    QTcpSocket* rawPeer = nullptr;
    QByteArray answer;
    std::unique_ptr<QWebSocket> peer;
    QStringList arrived;
    QtWebSocketTransport transport;
    std::unique_ptr<WebSocketConnection> socket;
    QStringList lines;
    bool inCall = false;
};

TEST_F(WebSocketTransportTest, TheUpgradeCarriesTheHeadersAndTheQueryAsGiven) {
    answer = "HTTP/1.1 403 Forbidden\r\nContent-Length: 0\r\n\r\n";
    QByteArray request;
    QObject::connect(&raw, &QTcpServer::newConnection, &raw, [&] {
        rawPeer->disconnect(rawPeer);
        QObject::connect(rawPeer, &QTcpSocket::readyRead, rawPeer, [&] { request += rawPeer->readAll(); });
    });
    const QUrl url(rawUrl().toString() + u"?ticket=a%2Bb%2Fc%3D%26%23%25%20%D1%8F"_s);
    open(url, 10s, {{"Origin", "https://service.example"}, {"Authorization", "Bearer t"}, {"Cookie", "a=1; b=2"}});
    ASSERT_TRUE(waitFor([&] { return request.contains("\r\n\r\n"); }));
    EXPECT_TRUE(request.startsWith("GET /ws?ticket=a%2Bb%2Fc%3D%26%23%25%20%D1%8F HTTP/1.1\r\n"))
        << request.constData();
    EXPECT_EQ(request.count("Origin: https://service.example\r\n"), 1) << request.constData();
    EXPECT_EQ(request.toLower().count("\r\norigin:"), 1) << request.constData();
    EXPECT_TRUE(request.contains("Authorization: Bearer t\r\n")) << request.constData();
    EXPECT_TRUE(request.contains("Cookie: a=1; b=2\r\n")) << request.constData();
}

TEST_F(WebSocketTransportTest, FramesGoBothWaysInOrder) {
    openToPeer();
    const QString large = QString(700000, u'я');
    for (const QString& text : {u"один"_s, large, u"три 😀"_s})
        send(text);
    peer->sendTextMessage(u"привет"_s);
    peer->sendBinaryMessage(u"двоичный"_s.toUtf8());
    peer->sendTextMessage(u""_s);
    ASSERT_TRUE(waitFor([&] { return arrived.size() == 3 && lines.size() >= 6; }));
    EXPECT_TRUE(arrived == QStringList({u"один"_s, large, u"три 😀"_s}));
    EXPECT_THAT(QStringList(lines.filter(u"got"_s)), ElementsAre(u"got привет"_s, u"got двоичный"_s, u"got "_s));
    EXPECT_THAT(QStringList(lines.filter(u"sent"_s)),
        ElementsAre(u"sent один"_s, u"sent "_s + large.left(20), u"sent три 😀"_s));
}

TEST_F(WebSocketTransportTest, ARefusedUpgradeNamesItsStatus) {
    for (const int status : {301, 401, 403, 404, 429, 500, 503}) {
        answer = "HTTP/1.1 " + QByteArray::number(status) +
            " No\r\nContent-Type: application/json\r\nContent-Length: 2\r\n\r\n{}";
        open(rawUrl());
        ASSERT_TRUE(waitFor([&] { return ended(); })) << status;
        settle();
        EXPECT_THAT(lines, ElementsAre(u"refused %1"_s.arg(status)));
    }
}

TEST_F(WebSocketTransportTest, AnUpgradeThatFailsIsReportedOnce) {
    using enum URLError::Code;
    struct Row {
        const char* name;
        QByteArray bytes;
    };
    for (const Row& row : {
             Row{"not HTTP", "SSH-2.0-x\r\n\r\n"},
             Row{"wrong key",
                 "HTTP/1.1 101 Switching Protocols\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
                 "Sec-WebSocket-Accept: 404/403=\r\n\r\n"},
             Row{"a plain 200", "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n"},
         }) {
        answer = row.bytes;
        open(rawUrl());
        ASSERT_TRUE(waitFor([&] { return ended(); })) << row.name;
        settle();
        EXPECT_EQ(lines.size(), 1) << row.name << ": " << lines.join(u" | "_s).toStdString();
        EXPECT_FALSE(lines.contains(u"opened"_s)) << row.name;
    }
    EXPECT_THAT(lines, ElementsAre(u"refused 200"_s));
    answer = "HTTP/1.1 101 Switching Protocols\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
             "Sec-WebSocket-Accept: 404/403=\r\n\r\n";
    open(rawUrl());
    ASSERT_TRUE(waitFor([&] { return ended(); }));
    EXPECT_THAT(QStringList(lines.filter(u"refused"_s)), IsEmpty()) << "a failed handshake is not a refusal";
}

TEST_F(WebSocketTransportTest, NoPeerIsNamed) {
    using enum URLError::Code;
    const QUrl gone = rawUrl();
    raw.close();
    open(gone);
    ASSERT_TRUE(waitFor([&] { return ended(); }));
    settle();
    EXPECT_THAT(lines, ElementsAre(failed(cannotConnectToHost)));
}

TEST_F(WebSocketTransportTest, APeerThatDoesNotAnswerTimesOutAndALateAnswerChangesNothing) {
    using enum URLError::Code;
    open(rawUrl(), 80ms);
    ASSERT_TRUE(waitFor([&] { return ended(); }));
    ASSERT_TRUE(rawPeer);
    EXPECT_TRUE(waitFor([&] { return rawPeer->state() == QAbstractSocket::UnconnectedState; }))
        << "the connection is given up, not left behind";
    settle();
    EXPECT_THAT(lines, ElementsAre(failed(timedOut)));
}

TEST_F(WebSocketTransportTest, UnencryptedTrafficToAnotherHostIsRefused) {
    for (const char* address : {"ws://service.example/ws", "http://127.0.0.1/", "ws://127.0.0.1.example/"}) {
        open(QUrl(QString::fromLatin1(address)));
        EXPECT_THAT(lines, IsEmpty()) << "never inside the call";
        ASSERT_TRUE(waitFor([&] { return ended(); }));
        settle();
        EXPECT_THAT(lines, ElementsAre(failed(URLError::Code::secureConnectionFailed))) << address;
    }
}

TEST_F(WebSocketTransportTest, ACloseByThePeerComesWithCodeAndReasonAndOnce) {
    for (const int code : {1000, 1001, 1011}) {
        openToPeer();
        peer->close(static_cast<QWebSocketProtocol::CloseCode>(code), u"до связи"_s);
        ASSERT_TRUE(waitFor([&] { return ended(); }));
        settle();
        EXPECT_THAT(lines, ElementsAre(u"closed %1 до связи"_s.arg(code)));
        send(u"too late"_s);
        ASSERT_TRUE(waitFor([&] { return lines.size() == 2; }));
        EXPECT_EQ(lines.last(), u"unsent too late"_s);
    }
}

TEST_F(WebSocketTransportTest, APeerKilledInMidSendGivesEveryUnwrittenTextBackBeforeTheEnd) {
    openToPeer();
    QStringList texts;
    // More than the buffers of both kernels hold, to a peer that does not read.
    for (int i = 0; i < 40; ++i)
        texts.append(u"text %1 "_s.arg(i, 2) + QString(1'000'000, u'x'));
    peer->disconnect(peer.get());
    for (const QString& text : texts)
        send(text);
    // A reset, as when the process behind the socket is killed.
    peer->abort();
    ASSERT_TRUE(waitFor([&] { return ended(); }));
    settle();
    const QStringList sent = lines.filter(QRegularExpression(u"^sent"_s));
    const QStringList unsent = lines.filter(u"unsent"_s);
    EXPECT_EQ(sent.size() + unsent.size(), texts.size());
    EXPECT_GT(unsent.size(), 0);
    EXPECT_EQ(lines.last().section(u' ', 0, 0), u"failed"_s) << lines.last().toStdString();
    for (qsizetype i = 0; i < unsent.size(); ++i)
        EXPECT_EQ(unsent.at(i), u"unsent "_s + texts.at(texts.size() - unsent.size() + i).left(20));
}

TEST_F(WebSocketTransportTest, ATextThatHasLeftIsNotGivenBackAtTheClose) {
    openToPeer();
    send(u"one"_s);
    send(u"two"_s);
    EXPECT_THAT(socket->close(1000), IsEmpty());
    ASSERT_TRUE(waitFor([&] { return peer->state() == QAbstractSocket::UnconnectedState; }));
    EXPECT_THAT(arrived, ElementsAre(u"one"_s, u"two"_s));
    EXPECT_EQ(peer->closeCode(), QWebSocketProtocol::CloseCodeNormal);
    EXPECT_THAT(lines, IsEmpty()) << "no signal follows a close";
}

TEST_F(WebSocketTransportTest, WhatIsGivenBackAtTheCloseHasNotArrivedWhole) {
    openToPeer();
    QStringList texts;
    for (int i = 0; i < 40; ++i)
        texts.append(u"text %1 "_s.arg(i, 2) + QString(1'000'000, u'x'));
    for (const QString& text : texts)
        send(text);
    const QStringList back = socket->close(1001);
    ASSERT_GT(back.size(), 0);
    EXPECT_TRUE(back == texts.mid(texts.size() - back.size())) << "the newest ones, in order";
    socket.reset();
    ASSERT_TRUE(waitFor([&] { return peer->state() == QAbstractSocket::UnconnectedState; }));
    settle();
    EXPECT_FALSE(arrived.contains(texts.last())) << "given back, and yet delivered";
    EXPECT_THAT(lines, IsEmpty());
}

TEST_F(WebSocketTransportTest, ATextBeforeTheOpeningIsGivenBack) {
    open(server.serverUrl());
    send(u"early"_s);
    ASSERT_TRUE(waitFor([&] { return lines.contains(u"opened"_s) && lines.size() == 2; }));
    EXPECT_THAT(QStringList(lines.filter(u"unsent"_s)), ElementsAre(u"unsent early"_s));
    EXPECT_THAT(arrived, IsEmpty());
}

TEST_F(WebSocketTransportTest, APingIsAnsweredByAPong) {
    openToPeer();
    socket->ping(10s);
    ASSERT_TRUE(waitFor([&] { return !lines.isEmpty(); }));
    EXPECT_THAT(lines, ElementsAre(u"pong"_s));
}

TEST_F(WebSocketTransportTest, APingWithoutAPongFailsOnce) {
    // A handshake by hand, by a peer that answers nothing after it.
    QObject::connect(&raw, &QTcpServer::newConnection, &raw, [&] {
        rawPeer->disconnect(rawPeer);
        QObject::connect(rawPeer, &QTcpSocket::readyRead, rawPeer, [&] {
            const QByteArray request = rawPeer->readAll();
            const auto at = request.indexOf("Sec-WebSocket-Key: ");
            if (at < 0)
                return;
            const QByteArray key = request.mid(at + 19, request.indexOf("\r\n", at) - at - 19);
            rawPeer->write("HTTP/1.1 101 Switching Protocols\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
                           "Sec-WebSocket-Accept: " +
                QCryptographicHash::hash(key + "258EAFA5-E914-47DA-95CA-C5AB0DC85B11", QCryptographicHash::Sha1)
                    .toBase64() +
                "\r\n\r\n");
        });
    });
    open(rawUrl());
    ASSERT_TRUE(waitFor([&] { return lines.contains(u"opened"_s); }));
    socket->ping(30ms);
    ASSERT_TRUE(waitFor([&] { return lines.size() == 2; }));
    settle(60);
    EXPECT_THAT(lines, ElementsAre(u"opened"_s, u"ping failed"_s));
}

TEST_F(WebSocketTransportTest, ItMayEndInAnyState) {
    const QUrl silent = rawUrl();
    open(silent);
    socket.reset();
    open(silent);
    ASSERT_TRUE(waitFor([&] { return rawPeer != nullptr; }));
    socket.reset();
    openToPeer();
    send(u"x"_s);
    socket.reset();
    openToPeer();
    // As the chat service does: ended by its own signal, in a later turn.
    QObject::connect(
        socket.get(), &WebSocketConnection::closed, socket.get(), [this] { socket.release()->deleteLater(); });
    peer->close();
    EXPECT_TRUE(waitFor([&] { return !socket; }));
    settle();
}

}
}
