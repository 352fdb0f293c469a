#include "Chat/ChatService.h"
#include "Backend.h"
#include "FakeRandom.h"
#include "FakeSocket.h"
#include "LogCapture.h"

#include <gmock/gmock.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

const QString ticketPath = u"/sockets/ticket"_s;

class ChatServiceTest : public testing::Test, public Backend {
protected:
    ChatServiceTest() {
        signIn("tok-secret");
        http.answer(ticketPath, R"({"ticket":"t1"})");
        restart();
    }

    void restart() {
        chat = std::make_unique<ChatService>(ChatService::Dependencies{client, service, virtualTime, random});
        chat->onConnectionStatusChanged = [this](const QString& status) { happened(u"status "_s + status); };
        chat->onEvent = [this](const SocketEvent& event) {
            if (std::get_if<SocketEvent::Connected>(&event.value))
                happened(u"connected"_s);
            else if (const auto* lost = std::get_if<SocketEvent::Disconnected>(&event.value))
                happened(lost->error ? u"disconnected, error"_s : u"disconnected"_s);
            else if (const auto* chunk = std::get_if<SocketEvent::TextChunk>(&event.value))
                happened(u"text "_s + chunk->content);
            else
                happened(u"other"_s);
        };
    }
    void happened(const QString& what) {
        events.append(what);
        if (onHappened)
            onHappened(what);
    }
    void open() {
        chat->connect();
        service.accept();
        events.clear();
    }
    // What the far side got, without the JSON around it.
    QStringList texts() const {
        QStringList all;
        for (const QString& frame : service.frames())
            all.append(textOf(frame));
        return all;
    }
    QStringList queued() const {
        QStringList all;
        for (const QString& frame : chat->pendingMessages())
            all.append(textOf(frame));
        return all;
    }
    static QString textOf(const QString& frame) {
        const QJsonArray parts = QJsonDocument::fromJson(frame.toUtf8())["data"_L1]["content"_L1].toArray();
        return parts.isEmpty() ? frame : parts.last()["text"_L1].toString();
    }

    FakeRandom random;
    FakeWebSocketTransport service;
    std::unique_ptr<ChatService> chat;
    QStringList events;
    std::function<void(const QString&)> onHappened;
};

TEST_F(ChatServiceTest, TheHandshakeCarriesTicketOriginTokenAndCookies) {
    http.cookies = "a=1; b=2";
    http.answer(ticketPath, R"({"ticket":"a+b/c=&#% я"})");
    chat->connect();
    ASSERT_EQ(service.count(), 1u);
    const WebSocketRequest& request = service.connection().request;
    EXPECT_EQ(
        request.url.toString(QUrl::FullyEncoded).section(u'?', 0, 0), u"wss://service.example:8443/ws/v1/chats"_s);
    EXPECT_EQ(request.url.query(QUrl::FullyEncoded), u"ticket=a%2Bb%2Fc%3D%26%23%25%20%D1%8F"_s);
    const HttpResponse headers{0, request.headers, {}};
    EXPECT_EQ(headers.header("Origin"), "https://service.example:8443");
    EXPECT_EQ(headers.header("Authorization"), "Bearer tok-secret");
    EXPECT_EQ(headers.header("Cookie"), "a=1; b=2");
    EXPECT_EQ(request.openTimeout, 60s);
}

TEST_F(ChatServiceTest, ConnectingTwiceStartsOneAttempt) {
    http.hold(ticketPath);
    chat->connect();
    chat->connect();
    EXPECT_EQ(http.count(), 1u);
    http.open(ticketPath).answer(R"({"ticket":"t1"})");
    chat->connect();
    EXPECT_EQ(service.count(), 1u);
    service.accept();
    chat->connect();
    EXPECT_EQ(service.count(), 1u);
    EXPECT_THAT(events, ElementsAre(u"status Connected"_s, u"connected"_s));
}

TEST_F(ChatServiceTest, ATicketThatComesAfterDisconnectOpensNothingAndArmsNothing) {
    http.hold(ticketPath);
    for (const bool good : {true, false}) {
        chat->connect();
        chat->disconnect();
        auto& ticket = http.open(ticketPath);
        if (good)
            ticket.answer(R"({"ticket":"t1"})");
        else
            ticket.fail(URLError::Code::timedOut);
        virtualTime.advance(120s);
        EXPECT_EQ(service.count(), 0u) << good;
        EXPECT_FALSE(http.hasOpen(ticketPath)) << good;
        EXPECT_THAT(virtualTime.dueIn(), IsEmpty()) << good;
    }
}

TEST_F(ChatServiceTest, AnOutdatedTicketDoesNotDisturbTheAttemptThatFollowed) {
    http.hold(ticketPath);
    for (const bool good : {true, false}) {
        restart();
        const auto sockets = service.count();
        chat->connect();
        auto& stale = http.open(ticketPath);
        chat->disconnect();
        chat->connect();
        auto& fresh = http.last();
        ASSERT_NE(&stale, &fresh);
        if (good)
            stale.answer(R"({"ticket":"stale"})");
        else
            stale.fail(URLError::Code::timedOut);
        EXPECT_EQ(service.count(), sockets) << good;
        EXPECT_THAT(virtualTime.dueIn(), IsEmpty()) << good;
        chat->connect();
        EXPECT_TRUE(fresh.isOpen()) << "the running attempt was started twice";
        fresh.answer(R"({"ticket":"fresh"})");
        ASSERT_EQ(service.count(), sockets + 1) << good;
        EXPECT_EQ(service.connection().request.url.query(), u"ticket=fresh"_s);
        service.accept();
        EXPECT_TRUE(chat->isConnected());
    }
}

TEST_F(ChatServiceTest, QueuedFramesLeaveInOrderWhenTheSocketOpens) {
    chat->sendMessage(1, u"one"_s);
    chat->createChat(u"auto"_s, u"two"_s);
    chat->sendMessage(1, u"three"_s);
    EXPECT_EQ(service.count(), 1u) << "sending starts the connection, once";
    EXPECT_THAT(queued(), ElementsAre(u"one"_s, u"two"_s, u"three"_s));
    service.accept();
    EXPECT_THAT(texts(), ElementsAre(u"one"_s, u"two"_s, u"three"_s));
    EXPECT_THAT(queued(), IsEmpty());
    chat->sendMessage(1, u"four"_s);
    EXPECT_THAT(texts(), ElementsAre(u"one"_s, u"two"_s, u"three"_s, u"four"_s));
}

TEST_F(ChatServiceTest, WhatAListenerSendsAtTheOpeningFollowsWhatWasQueued) {
    onHappened = [this](const QString& what) {
        if (what == u"status Connected"_s || what == u"connected"_s)
            chat->sendMessage(1, what);
    };
    chat->sendMessage(1, u"one"_s);
    chat->sendMessage(1, u"two"_s);
    service.accept();
    EXPECT_THAT(texts(), ElementsAre(u"one"_s, u"two"_s, u"status Connected"_s, u"connected"_s));
}

TEST_F(ChatServiceTest, AFrameThatFailsGoesToTheFrontAndANewSocketCarriesItFirst) {
    open();
    service.holdsWrites = true;
    chat->sendMessage(1, u"lost"_s);
    const QString lost = service.connection().unwritten.takeFirst();
    service.failSend(lost);
    chat->sendMessage(1, u"later"_s);
    EXPECT_THAT(queued(), ElementsAre(u"lost"_s, u"later"_s));
    service.holdsWrites = false;
    virtualTime.runPosted();
    ASSERT_EQ(service.count(), 2u);
    EXPECT_EQ(service.connections.front()->closeCode, 1001);
    service.accept();
    EXPECT_THAT(texts(), ElementsAre(u"lost"_s, u"later"_s));
}

TEST_F(ChatServiceTest, TwoFramesThatFailEndInReverseOrder) {
    open();
    service.holdsWrites = true;
    chat->sendMessage(1, u"one"_s);
    chat->sendMessage(1, u"two"_s);
    service.breakOff();
    EXPECT_THAT(queued(), ElementsAre(u"two"_s, u"one"_s));
}

TEST_F(ChatServiceTest, FramesStillUnwrittenWhenTheSocketIsReplacedAreSentAgainInOrder) {
    open();
    service.holdsWrites = true;
    chat->sendMessage(1, u"one"_s);
    chat->sendMessage(1, u"two"_s);
    service.failPing();
    chat->sendMessage(1, u"three"_s);
    ASSERT_EQ(service.count(), 2u);
    service.holdsWrites = false;
    service.accept();
    EXPECT_THAT(texts(), ElementsAre(u"one"_s, u"two"_s, u"three"_s));
    EXPECT_THAT(service.connections.front()->frames, IsEmpty());
}

TEST_F(ChatServiceTest, FramesStillUnwrittenAtDisconnectWaitForTheNextConnection) {
    open();
    service.holdsWrites = true;
    chat->sendMessage(1, u"one"_s);
    chat->disconnect();
    EXPECT_EQ(service.connection().closeCode, 1000);
    virtualTime.advance(120s);
    EXPECT_EQ(service.count(), 1u);
    service.holdsWrites = false;
    open();
    EXPECT_THAT(texts(), ElementsAre(u"one"_s));
}

TEST_F(ChatServiceTest, TheReconnectDelayDoublesUpToThirtySecondsAndBeginsAnewAfterAnOpening) {
    for (const double fraction : {0.0, 0.5}) {
        restart();
        random.fraction = fraction;
        http.fail(ticketPath, URLError::Code::notConnectedToInternet);
        chat->connect();
        std::vector<long> delays;
        for (int i = 0; i < 8; ++i) {
            ASSERT_EQ(virtualTime.dueIn().size(), 1u) << "attempt " << i;
            delays.push_back(virtualTime.dueIn().front());
            virtualTime.advance(std::chrono::milliseconds(delays.back() - 1));
            const auto before = http.count();
            virtualTime.advance(1ms);
            EXPECT_EQ(http.count(), before + 1) << "attempt " << i;
        }
        if (fraction == 0.0)
            EXPECT_THAT(delays, ElementsAre(1000, 2000, 4000, 8000, 16000, 30000, 30000, 30000));
        else
            EXPECT_THAT(delays, ElementsAre(1500, 2500, 4500, 8500, 16500, 30000, 30000, 30000));
        http.answer(ticketPath, R"({"ticket":"t1"})");
        virtualTime.advance(30s);
        service.accept();
        service.close();
        EXPECT_THAT(virtualTime.dueIn(), ElementsAre(static_cast<long>(1000 + 1000 * fraction)));
    }
}

TEST_F(ChatServiceTest, AThousandFailuresStillGiveThirtySeconds) {
    http.fail(ticketPath, URLError::Code::notConnectedToInternet);
    chat->connect();
    virtualTime.advance(30s * 1100);
    EXPECT_GT(http.count(), 1050u);
    EXPECT_LE(virtualTime.dueIn().front(), 30000);
}

// How a connection can end, and what the listener hears.
TEST_F(ChatServiceTest, EachLossIsReportedAndArmsOneReconnect) {
    struct Row {
        const char* name;
        std::function<void()> lose;
        std::vector<QString> heard;
    };
    for (const Row& row : {
             Row{"closed by the peer", [&] { service.close(1011, u"restart"_s); },
                 {u"status Reconnecting..."_s, u"disconnected"_s}},
             Row{"broken", [&] { service.breakOff(); }, {u"status Reconnecting..."_s, u"disconnected, error"_s}},
             Row{"refused", [&] { service.refuse(403); }, {u"status Reconnecting..."_s}},
             Row{"no pong", [&] { service.failPing(); }, {}},
             Row{"no pong, then broken",
                 [&] {
                     service.failPing();
                     service.breakOff();
                 },
                 {u"status Reconnecting..."_s, u"disconnected, error"_s}},
         }) {
        SCOPED_TRACE(row.name);
        restart();
        open();
        row.lose();
        EXPECT_EQ(std::vector<QString>(events.begin(), events.end()), row.heard);
        EXPECT_FALSE(chat->isConnected());
        EXPECT_THAT(virtualTime.dueIn(), ElementsAre(1000)) << "one reconnect, no heartbeat";
        const auto before = service.count();
        virtualTime.advance(1s);
        EXPECT_EQ(service.count(), before + 1);
        service.accept();
        EXPECT_TRUE(chat->isConnected());
    }
}

TEST_F(ChatServiceTest, ATicketIsRetriedAfterAnyFailureAndTheQueueStays) {
    struct Row {
        const char* name;
        std::function<void()> script;
    };
    for (const Row& row : {
             Row{"no network", [&] { http.fail(ticketPath, URLError::Code::notConnectedToInternet); }},
             Row{"an error without words", [&] { http.fail(ticketPath, URLError::Code::other, QString()); }},
             Row{"server error", [&] { http.answer(ticketPath, "{}", 500); }},
             Row{"dead token", [&] { http.answer(ticketPath, "{}", 401); }},
             Row{"a page", [&] { http.answer(ticketPath, "<html>", 200, "text/html"); }},
             Row{"no ticket in it", [&] { http.answer(ticketPath, R"({"ticket":7})"); }},
         }) {
        SCOPED_TRACE(row.name);
        restart();
        row.script();
        const auto before = service.count();
        chat->sendMessage(1, u"typed"_s);
        EXPECT_EQ(service.count(), before);
        EXPECT_THAT(queued(), ElementsAre(u"typed"_s));
        http.answer(ticketPath, R"({"ticket":"t1"})");
        virtualTime.advance(1s);
        ASSERT_EQ(service.count(), before + 1);
        service.accept();
        EXPECT_THAT(texts(), ElementsAre(u"typed"_s));
    }
}

TEST_F(ChatServiceTest, DisconnectArmsNothingWhateverIsUnderWay) {
    struct Row {
        const char* name;
        std::function<void()> prepare;
    };
    for (const Row& row : {
             Row{"idle", [] {}},
             Row{"open", [&] { open(); }},
             Row{"opening", [&] { chat->connect(); }},
             Row{"waiting to reconnect",
                 [&] {
                     open();
                     service.close();
                 }},
             Row{"a send has just failed",
                 [&] {
                     open();
                     service.failSend(u"{}"_s);
                 }},
             Row{"the socket has broken in mid-send",
                 [&] {
                     open();
                     service.holdsWrites = true;
                     chat->sendMessage(1, u"x"_s);
                     service.breakOff();
                     service.holdsWrites = false;
                 }},
         }) {
        SCOPED_TRACE(row.name);
        restart();
        row.prepare();
        const auto sockets = service.count();
        const auto requests = http.count();
        chat->disconnect();
        virtualTime.advance(300s);
        EXPECT_EQ(service.count(), sockets);
        EXPECT_EQ(http.count(), requests);
        EXPECT_THAT(virtualTime.dueIn(), IsEmpty());
        EXPECT_FALSE(chat->isConnected());
    }
}

TEST_F(ChatServiceTest, AListenerMayDisconnectInAnyEventAndThatHolds) {
    struct Row {
        const char* name;
        QString at;
        std::function<void()> lose;
    };
    for (const Row& row : {
             Row{"at the opening", u"status Connected"_s, [] {}},
             Row{"at the opening event", u"connected"_s, [] {}},
             Row{"at a close", u"status Reconnecting..."_s, [&] { service.close(); }},
             Row{"at the event of a close", u"disconnected"_s, [&] { service.close(); }},
             Row{"at a break", u"disconnected, error"_s, [&] { service.breakOff(); }},
             Row{"at a refusal", u"status Reconnecting..."_s, [&] { service.refuse(503); }},
         }) {
        SCOPED_TRACE(row.name);
        restart();
        onHappened = [this, at = row.at](const QString& what) {
            if (what == at)
                chat->disconnect();
        };
        chat->connect();
        chat->sendMessage(1, u"typed"_s);
        service.accept();
        row.lose();
        const auto sockets = service.count();
        virtualTime.advance(300s);
        EXPECT_EQ(service.count(), sockets);
        EXPECT_THAT(virtualTime.dueIn(), IsEmpty());
        EXPECT_FALSE(chat->isConnected());
    }
}

TEST_F(ChatServiceTest, AListenerMayReconnectAtOnceAndNoSecondReconnectIsArmed) {
    onHappened = [this](const QString& what) {
        if (what == u"disconnected"_s)
            chat->connect();
    };
    open();
    service.close();
    ASSERT_EQ(service.count(), 2u);
    EXPECT_THAT(virtualTime.dueIn(), IsEmpty());
    service.accept();
    EXPECT_TRUE(chat->isConnected());
}

TEST_F(ChatServiceTest, LateSignalsOfAnOldSocketChangeNothing) {
    open();
    const QPointer<FakeSocket> old = service.connection().socket;
    service.failPing();
    chat->sendMessage(1, u"typed"_s); // replaces the socket
    ASSERT_EQ(service.count(), 2u);
    service.accept();
    events.clear();
    ASSERT_TRUE(old);
    emit old->opened();
    emit old->messageReceived(u"{\"event\":\"chunk\",\"data\":{\"content\":\"late\"}}"_s);
    emit old->closed(1006, {});
    emit old->failed(URLError(URLError::Code::other, {}));
    emit old->refused(403);
    emit old->pingFailed({});
    virtualTime.runPosted();
    EXPECT_FALSE(old) << "the old socket is let go of";
    EXPECT_THAT(events, IsEmpty());
    EXPECT_TRUE(chat->isConnected());
    EXPECT_THAT(virtualTime.dueIn(), ElementsAre(30000)) << "the heartbeat alone";
    EXPECT_EQ(service.count(), 2u);
}

TEST_F(ChatServiceTest, TheHeartbeatPingsTheOpenSocketEveryThirtySeconds) {
    open();
    virtualTime.advance(29999ms);
    EXPECT_EQ(service.connection().pings, 0);
    virtualTime.advance(1ms);
    EXPECT_EQ(service.connection().pings, 1);
    service.pong();
    virtualTime.advance(60s);
    EXPECT_EQ(service.connection().pings, 3);
    service.close();
    virtualTime.advance(1s);
    service.accept();
    virtualTime.advance(30s);
    EXPECT_EQ(service.connection().pings, 1) << "one heartbeat for each connection";
}

TEST_F(ChatServiceTest, FramesReachTheListenerInOrder) {
    open();
    for (const char* frame : {R"({"event":"chunk","data":{"content":"a"}})", "nonsense",
             R"({"event":"tool_start","data":{"tool":"image"}})", R"({"event":"chunk","data":{"content":"b"}})"})
        service.push(QString::fromUtf8(frame));
    EXPECT_THAT(events, ElementsAre(u"text a"_s, u"other"_s, u"other"_s, u"text b"_s));
}

TEST_F(ChatServiceTest, AListenerThatDisconnectsInAFrameHearsNoMoreOfIt) {
    open();
    onHappened = [this](const QString&) { chat->disconnect(); };
    service.push(u"{\"event\":\"tool_start\",\"data\":{\"tool\":\"image\"}}"_s);
    EXPECT_THAT(events, ElementsAre(u"other"_s));
}

TEST_F(ChatServiceTest, ReconnectAndWaitEndsWithTheOpeningOrAfterFiveSeconds) {
    Running<void> first([&] { return chat->reconnectAndWait(); });
    EXPECT_FALSE(first.isDone());
    service.accept();
    EXPECT_TRUE(first.isDone());
    EXPECT_TRUE(chat->isConnected());

    const Running<void> connected([&] { return chat->reconnectAndWait(); });
    EXPECT_TRUE(connected.isDone());
    EXPECT_EQ(service.count(), 1u);

    service.close();
    const Running<void> late([&] { return chat->reconnectAndWait(); });
    const Running<void> also([&] { return chat->reconnectAndWait(); });
    virtualTime.advance(4999ms);
    EXPECT_FALSE(late.isDone());
    virtualTime.advance(1ms);
    EXPECT_TRUE(late.isDone());
    EXPECT_TRUE(also.isDone());
    EXPECT_FALSE(chat->isConnected());
    service.accept();
    EXPECT_TRUE(chat->isConnected()) << "the attempt goes on after the wait";
}

TEST_F(ChatServiceTest, ReconnectAndWaitReplacesAnAttemptThatHangs) {
    http.hold(ticketPath);
    chat->connect();
    const Running<void> waiting([&] { return chat->reconnectAndWait(); });
    EXPECT_EQ(http.count(), 2u);
    http.last().answer(R"({"ticket":"t2"})");
    service.accept();
    EXPECT_TRUE(waiting.isDone());
}

TEST_F(ChatServiceTest, ItMayEndInAnyStateAndNothingRunsAfterwards) {
    struct Row {
        const char* name;
        std::function<void()> prepare;
    };
    for (const Row& row : {
             Row{"idle", [] {}},
             Row{"fetching a ticket",
                 [&] {
                     http.hold(ticketPath);
                     chat->connect();
                 }},
             Row{"opening", [&] { chat->connect(); }},
             Row{"open with unwritten frames",
                 [&] {
                     open();
                     service.holdsWrites = true;
                     chat->sendMessage(1, u"x"_s);
                 }},
             Row{"waiting to reconnect",
                 [&] {
                     open();
                     service.close();
                 }},
             Row{"a send has just failed",
                 [&] {
                     open();
                     service.failSend(u"{}"_s);
                 }},
         }) {
        SCOPED_TRACE(row.name);
        http.answer(ticketPath, R"({"ticket":"t1"})");
        service.holdsWrites = false;
        restart();
        row.prepare();
        const auto sockets = service.count();
        events.clear();
        chat.reset();
        if (http.hasOpen(ticketPath))
            http.open(ticketPath).answer(R"({"ticket":"t1"})");
        virtualTime.advance(300s);
        EXPECT_EQ(service.count(), sockets);
        EXPECT_THAT(events, IsEmpty());
        EXPECT_THAT(virtualTime.dueIn(), IsEmpty());
    }
}

TEST_F(ChatServiceTest, ItsEndUnwindsThoseWhoWaitForAReconnect) {
    Running<void> waiting([&] { return chat->reconnectAndWait(); });
    chat.reset();
    virtualTime.advance(10s);
    EXPECT_FALSE(waiting.isWaiting());
    EXPECT_FALSE(waiting.isDone()) << "a service that is gone has not reconnected";
}

TEST_F(ChatServiceTest, TheLogHoldsNoTokenTicketOrText) {
    const LogCapture log;
    http.answer(ticketPath, R"({"ticket":"ticket-secret"})");
    http.cookies = "cookie-secret";
    chat->sendMessage(1, u"text-secret"_s);
    service.accept();
    service.push(u"{\"event\":\"chunk\",\"data\":{\"content\":\"answer-secret\"}}"_s);
    service.push(u"{\"event\":\"create\",\"data\":{\"id\":\"x\",\"name\":\"name-secret\"}}"_s);
    service.holdsWrites = true;
    chat->sendMessage(1, u"more text-secret"_s);
    service.breakOff();
    virtualTime.advance(60s);
    chat->disconnect();
    EXPECT_EQ(log.count(u"secret"_s), 0) << log.text().toStdString();
    EXPECT_GT(log.count(u"[ChatService]"_s), 3);
}

TEST_F(ChatServiceTest, MessagesComeWrappedOrBareAndABadOneFailsTheList) {
    const QByteArray one = R"({"id":1,"createdAt":"t","chatId":7,"role":"ai","usageTokens":0,"content":[]})";
    struct Row {
        QByteArray body;
        std::size_t count;
    };
    for (const Row& row : {Row{"[" + one + "]", 1}, Row{R"({"data":[)" + one + "," + one + "]}", 2}, Row{"[]", 0}}) {
        const Running<std::vector<ChatMessage>> asked([&] { return chat->getMessages(7); });
        EXPECT_EQ(http.last().line(), u"GET /chats/7/messages"_s);
        const std::size_t before = http.count();
        http.last().answer(row.body);
        // A list that is not wrapped is asked for as such.
        if (row.body.startsWith('[')) {
            ASSERT_EQ(http.count(), before + 1);
            http.last().answer(row.body);
        }
        EXPECT_EQ(asked.value().size(), row.count) << row.body.constData();
    }
    for (const QByteArray& body :
        {QByteArray("[7]"), QByteArray("{}"), QByteArray("<html>"), QByteArray(""), QByteArray(R"([{"id":1}])")}) {
        const Running<std::vector<ChatMessage>> asked([&] { return chat->getMessages(7); });
        http.last().answer(body);
        http.last().answer(body);
        ASSERT_TRUE(asked.error<APIError>()) << body.constData();
        EXPECT_EQ(asked.error<APIError>()->errorDescription(), u"Не удалось прочитать ответ сервера"_s);
    }
}

TEST_F(ChatServiceTest, WhatIsDoneToAChatIsOneRequestEach) {
    const QByteArray json = R"({"id":7,"name":"Новое","mode":"m","createdAt":"c","updatedAt":"u","userId":"u"})";
    defaults.setString(u"currentOrganizationId"_s, u"o1"_s);
    const Running<Chat> renamed([&] { return chat->renameChat(7, u"Новое"_s); });
    EXPECT_EQ(http.last().line(), u"PATCH /chats/7?org=o1"_s);
    EXPECT_EQ(http.last().request.body, QByteArray(R"({"name":"Новое"})"));
    http.last().answer(json);
    EXPECT_EQ(renamed.value().name, u"Новое"_s);

    const Running<Chat> pinned([&] { return chat->setFavorite(7, true); });
    EXPECT_EQ(http.last().line(), u"PUT /chats/7/favorite?isFavorite=true&org=o1"_s);
    http.last().answer(json);
    EXPECT_EQ(pinned.value().id, 7);

    const Running<void> deleted([&] { return chat->deleteChat(7); });
    EXPECT_EQ(http.last().line(), u"DELETE /chats/7?org=o1"_s);
    http.last().answer(R"({"success":false})"); // that it is a success counts
    deleted.value();

    const Running<QByteArray> pdf([&] { return chat->downloadArtifactPDF(7, u"a/b"_s, 2); });
    EXPECT_EQ(http.last().line(), u"GET /chats/7/artifacts/a%2Fb/2/pdf?org=o1"_s);
    http.last().answer("%PDF", 200, "application/pdf");
    EXPECT_EQ(pdf.value(), QByteArray("%PDF"));
}

}
}
