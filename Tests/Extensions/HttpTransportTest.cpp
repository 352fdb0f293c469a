#include "Linux/QtHttpTransport.h"
#include "Printing.h"
#include "Running.h"
#include "WaitFor.h"

#include <QBuffer>
#include <QTcpServer>
#include <QTcpSocket>

#include <gmock/gmock.h>

#include <algorithm>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using namespace std::chrono_literals;

// A real HTTP server whose every answer is the next of a script of raw bytes.
class RawServer : public QTcpServer {
public:
    RawServer() {
        EXPECT_TRUE(listen(QHostAddress::LocalHost));
        connect(this, &QTcpServer::newConnection, this, [this] {
            ++connections;
            QTcpSocket* socket = nextPendingConnection();
            sockets.append(socket);
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
                received += socket->readAll();
                if (!received.contains("\r\n\r\n") || answers.isEmpty())
                    return;
                requests.append(std::exchange(received, {}));
                socket->write(answers.takeFirst());
                socket->flush();
                if (closesAfterAnswer)
                    socket->disconnectFromHost();
            });
        });
    }
    QUrl url(const QString& path = u"/x"_s) const {
        return QUrl(u"http://127.0.0.1:%1%2"_s.arg(serverPort()).arg(path));
    }

    QByteArrayList answers;
    QByteArrayList requests;
    QByteArray received;
    QList<QTcpSocket*> sockets;
    int connections = 0;
    bool closesAfterAnswer = false;
};

QByteArray answer(const char* status, const QByteArray& body, const QByteArray& headers = {}) {
    return QByteArray("HTTP/1.1 ") + status +
        "\r\nContent-Type: application/json\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n" + headers +
        "\r\n" + body;
}

HttpRequest get(const QUrl& url, std::chrono::milliseconds timeout = 10s, std::chrono::milliseconds inAll = 10s) {
    return {.method = "GET", .url = url, .headers = {}, .body = {}, .timeout = timeout, .resourceTimeout = inAll};
}

class HttpTransportTest : public testing::Test {
protected:
    std::unique_ptr<Running<HttpResponse>> begin(HttpRequest request) {
        return std::make_unique<Running<HttpResponse>>([this, request]() -> Task<HttpResponse> {
            auto sent = http->send(request);
            co_return co_await sent;
        });
    }
    std::unique_ptr<Running<HttpResponse>> ended(HttpRequest request) {
        auto running = begin(std::move(request));
        EXPECT_TRUE(waitFor([&] { return running->isDone(); }));
        return running;
    }
    static std::string code(const Running<HttpResponse>& running) {
        if (const auto error = running.error<URLError>())
            return "URLError " + std::to_string(static_cast<int>(error->code)) + " " + error->description.toStdString();
        return running.isDone() ? "answer " + std::to_string(running.value().status) : "waits";
    }
    static std::string failure(URLError::Code code, const char* text) {
        return "URLError " + std::to_string(static_cast<int>(code)) + " " + text;
    }

    RawServer server;
    std::unique_ptr<QtHttpTransport> http = std::make_unique<QtHttpTransport>();
};

TEST_F(HttpTransportTest, EveryStatusIsAnAnswerWithItsBodyAndHeaders) {
    for (const char* status :
        {"200 OK", "201 Created", "304 Not Modified", "400 Bad", "401 No", "403 No", "404 None", "409 Conflict",
            "410 Gone", "413 Large", "418 Tea", "429 Many", "500 Bad", "501 Not", "503 Not", "599 X"}) {
        const bool bodiless = QByteArray(status).startsWith("304");
        server.answers = {answer(status, bodiless ? "" : R"({"message":"Привет"})", "X-Extra: да\r\n")};
        const auto got = ended(get(server.url()));
        ASSERT_EQ(code(*got), "answer " + std::string(status).substr(0, 3));
        EXPECT_EQ(got->value().body, bodiless ? QByteArray() : QByteArray(R"({"message":"Привет"})")) << status;
        EXPECT_EQ(got->value().header("x-extra"), QByteArray("да")) << status;
    }
}

TEST_F(HttpTransportTest, MethodHeadersAndBodyArriveAsGiven) {
    for (const char* method : {"GET", "POST", "PUT", "PATCH", "DELETE"}) {
        server.answers = {answer("200 OK", "{}")};
        const QByteArray body = method == QByteArray("GET") ? QByteArray() : QByteArray(R"({"a":"я"})");
        server.requests.clear();
        const auto got = ended({.method = method,
            .url = server.url(u"/chats?org=1&q=%D1%8F"_s),
            .headers = {{"Authorization", "Bearer t"}, {"Content-Type", "application/json"}},
            .body = body});
        ASSERT_EQ(code(*got), "answer 200") << method;
        const QByteArray sent = server.requests.value(0);
        EXPECT_TRUE(sent.startsWith(QByteArray(method) + " /chats?org=1&q=%D1%8F HTTP/1.1\r\n")) << sent.constData();
        EXPECT_TRUE(sent.toLower().contains("authorization: bearer t\r\n")) << sent.constData();
        EXPECT_TRUE(sent.endsWith("\r\n\r\n" + body) || (server.received == body)) << sent.constData();
        server.received.clear();
    }
}

// Something answered, and yet no answer came.
TEST_F(HttpTransportTest, AnExchangeThatBreaksOffIsAFailureAndNeverHalfAnAnswer) {
    using enum URLError::Code;
    struct Row {
        const char* name;
        QByteArray bytes;
    };
    server.closesAfterAnswer = true;
    for (const Row& row : {
             Row{"nothing at all", ""},
             Row{"half a status line", "HTTP/1.1 20"},
             Row{"headers without an end", "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n"},
             Row{"a body cut short", "HTTP/1.1 200 OK\r\nContent-Length: 500\r\n\r\n{\"a\":"},
             Row{"a chunk cut short", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n50\r\n{\"a\":"},
             Row{"no last chunk", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n2\r\n{}\r\n"},
             Row{"not HTTP", "SSH-2.0-x\r\n\r\n"},
         }) {
        server.received.clear();
        // More than one: a client may try again.
        server.answers = {row.bytes, row.bytes, row.bytes, row.bytes};
        const auto got = ended(get(server.url()));
        EXPECT_TRUE(got->error<URLError>())
            << row.name << ": " << code(*got)
            << (got->isDone() && !got->error<URLError>() ? got->value().body.toStdString() : "");
    }
}

TEST_F(HttpTransportTest, NoWayToTheServerIsNamed) {
    using enum URLError::Code;
    const QUrl gone = server.url();
    server.close();
    EXPECT_EQ(code(*ended(get(gone))), failure(cannotConnectToHost, "Сервер не принимает соединения."));
}

TEST_F(HttpTransportTest, ASilentServerTimesOutByEitherLimit) {
    using enum URLError::Code;
    server.answers = {};
    const std::string late = failure(timedOut, "Время ожидания истекло.");
    EXPECT_EQ(code(*ended(get(server.url(), 60ms, 60s))), late);
    EXPECT_EQ(code(*ended(get(server.url(), 60s, 60ms))), late);
}

TEST_F(HttpTransportTest, PlainHttpToAnotherHostIsRefusedWithoutTraffic) {
    for (const char* address : {"http://service.example/x", "http://127.0.0.1.example/x", "http://10.0.0.1/x",
             "ftp://127.0.0.1/x", "file:///etc/hostname", "data:,x", "http://0.0.0.0/x", "http://localhost.example/"}) {
        const auto got = begin(get(QUrl(QString::fromLatin1(address))));
        ASSERT_TRUE(got->error<URLError>()) << address << ": refused at once";
        EXPECT_EQ(got->error<URLError>()->code, URLError::Code::secureConnectionFailed) << address;
        EXPECT_FALSE(got->error<URLError>()->isNetworkLoss()) << address;
    }
    EXPECT_EQ(server.connections, 0);
}

TEST_F(HttpTransportTest, ARedirectToAnotherOriginIsNotFollowedWithTheToken) {
    RawServer other;
    other.answers = {answer("200 OK", "{}")};
    server.answers = {answer("302 Found", "", "Location: " + other.url().toEncoded() + "\r\n")};
    const auto got = ended({.url = server.url(), .headers = {{"Authorization", "Bearer t"}}, .body = {}});
    EXPECT_EQ(other.connections, 0);
    EXPECT_NE(code(*got), "answer 200");
}

TEST_F(HttpTransportTest, CancellingAbortsTheConnection) {
    auto waiting = begin(get(server.url()));
    ASSERT_TRUE(waitFor([&] { return server.received.contains("\r\n\r\n"); }));
    waiting.reset();
    EXPECT_TRUE(waitFor([&] { return server.sockets.first()->state() == QAbstractSocket::UnconnectedState; }));
}

TEST_F(HttpTransportTest, AConnectionThatTheServerClosedWhileIdleIsReplaced) {
    server.answers = {answer("200 OK", "{}")};
    ASSERT_EQ(code(*ended(get(server.url()))), "answer 200");
    server.sockets.first()->close();
    settle();
    server.answers = {answer("200 OK", "[]")};
    EXPECT_EQ(code(*ended(get(server.url()))), "answer 200");
}

TEST_F(HttpTransportTest, ItsEndLeavesWhoWaitsToTheirScope) {
    auto waiting = begin(get(server.url()));
    ASSERT_TRUE(waitFor([&] { return !server.received.isEmpty(); }));
    http.reset();
    settle();
    waiting.reset();
}

TEST_F(HttpTransportTest, CookiesOfTheServiceComeBackForTheSocketsHandshake) {
    server.answers = {answer("200 OK", "{}", "Set-Cookie: a=1; Path=/; HttpOnly\r\nSet-Cookie: b=2; Path=/\r\n")};
    ASSERT_EQ(code(*ended(get(server.url()))), "answer 200");
    EXPECT_EQ(http->cookieHeader(server.url(u"/"_s)), "a=1; b=2");
    EXPECT_EQ(http->cookieHeader(QUrl(u"http://127.0.0.2/"_s)), QByteArray());
}

// A server that reads a request to its end before it answers.
class PatientServer : public QTcpServer {
public:
    PatientServer() {
        EXPECT_TRUE(listen(QHostAddress::LocalHost));
        connect(this, &QTcpServer::newConnection, this, [this] {
            QTcpSocket* socket = nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
                received += socket->readAll();
                const qsizetype head = received.indexOf("\r\n\r\n") + 4;
                if (head > 4 && received.size() - head >= expected)
                    socket->write(answer("200 OK", "{}"));
            });
        });
    }
    QByteArray received;
    qsizetype expected = 0;
};

TEST_F(HttpTransportTest, ABodyIsReadFromItsDeviceAndItsProgressTold) {
    PatientServer patient;
    const QByteArray content = QByteArray("0123456789abcdef").repeated(100'000);
    patient.expected = content.size();
    auto body = std::make_shared<QBuffer>();
    body->setData(content);
    ASSERT_TRUE(body->open(QIODevice::ReadOnly));
    std::vector<qint64> steps;
    HttpRequest request = get(QUrl(u"http://127.0.0.1:%1/x"_s.arg(patient.serverPort())));
    request.method = "POST";
    request.bodyDevice = body;
    request.onUploadProgress = [&](qint64 sent, qint64 total) {
        steps.push_back(sent);
        EXPECT_TRUE(total == content.size() || total <= 0) << total;
    };
    const auto running = ended(request);
    EXPECT_EQ(code(*running), "answer 200");
    EXPECT_TRUE(patient.received.toLower().contains("content-length: 1600000\r\n"));
    EXPECT_TRUE(patient.received.endsWith(content));
    EXPECT_TRUE(std::is_sorted(steps.begin(), steps.end()));
    EXPECT_FALSE(steps.empty());
    EXPECT_EQ(*std::max_element(steps.begin(), steps.end()), content.size());
}

}
}
