#include "Backend.h"
#include "Chat/ChatService.h"
#include "Chat/GenerationStateManager.h"
#include "FakeNotifications.h"
#include "FakeRandom.h"
#include "FakeSocket.h"
#include "LogCapture.h"
#include "Shell/TaskNotificationManager.h"

#include <gmock/gmock.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using namespace std::chrono_literals;
using Outcome = RecoveryResult::Outcome;

class RecoveryTest : public testing::Test, public Backend {
protected:
    RecoveryTest() {
        signIn("t");
        http.answer(u"/sockets/ticket"_s, R"({"ticket":"t"})");
    }
    void connect() {
        service.connect();
        sockets.accept();
    }
    std::unique_ptr<Running<RecoveryResult>> recover() {
        return std::make_unique<Running<RecoveryResult>>([this] { return state.recoverIfNeeded(service); });
    }
    static QByteArray messages(int count) {
        QByteArrayList list;
        for (int i = 0; i < count; ++i)
            list.append(R"({"id":1,"createdAt":"c","chatId":7,"role":"ai","content":[],"usageTokens":0})");
        return R"({"data":[)" + list.join(',') + "]}";
    }

    FakeRandom random;
    FakeWebSocketTransport sockets;
    ChatService service{{client, sockets, virtualTime, random}};
    GenerationStateManager state{defaults, virtualTime, virtualTime};
};

TEST_F(RecoveryTest, TheRecordReadsBackAndABrokenOneIsNone) {
    EXPECT_FALSE(state.getPending());
    state.markStarted(7, 4, u"image"_s, u"Имя"_s);
    EXPECT_EQ(state.getPending(),
        (PendingGeneration{.chatId = 7,
            .startedAt = virtualTime.now(),
            .lastMessageCount = 4,
            .type = u"image"_s,
            .chatName = u"Имя"_s}));
    // Seconds since the beginning of 2001.
    const double startedAt =
        QJsonDocument::fromJson(*defaults.data(u"com.korvihub.pendingGeneration"_s)).object()["startedAt"].toDouble();
    EXPECT_EQ(startedAt, QDateTime(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC).secsTo(virtualTime.now()));
    state.markStarted(-1, 0, u"text"_s, {});
    EXPECT_EQ(state.getPending()->chatName, std::nullopt);
    defaults.setData(u"com.korvihub.pendingGeneration"_s, "{\"chatId\":");
    EXPECT_FALSE(state.getPending());
    state.markStarted(8, 1, u"text"_s, {});
    EXPECT_EQ(state.getPending()->chatId, 8);
    state.markCompleted();
    EXPECT_FALSE(defaults.data(u"com.korvihub.pendingGeneration"_s));
}

TEST_F(RecoveryTest, NothingOrSomethingOldAsksNobody) {
    EXPECT_EQ(recover()->value().outcome, Outcome::nothingPending);
    state.markStarted(7, 2, u"text"_s, {});
    virtualTime.advance(601s);
    EXPECT_EQ(recover()->value(), (RecoveryResult{.outcome = Outcome::failed, .reason = u"Generation timed out"_s}));
    EXPECT_FALSE(state.getPending());
    EXPECT_EQ(http.count(), 0U);
    EXPECT_EQ(sockets.count(), 0U);
}

TEST_F(RecoveryTest, AStreamThatGoesOnToItsEndIsResumed) {
    connect();
    state.markStarted(7, 2, u"text"_s, {});
    const auto connected = recover();
    virtualTime.advance(2s);
    EXPECT_FALSE(connected->isDone());
    state.markCompleted(); // by the end of the stream
    virtualTime.advance(1s);
    EXPECT_EQ(connected->value().outcome, Outcome::resumed);

    sockets.breakOff();
    state.markStarted(7, 2, u"text"_s, {});
    const auto lost = recover();
    sockets.accept();
    virtualTime.advance(4s);
    state.markCompleted();
    EXPECT_FALSE(lost->isDone());
    virtualTime.advance(1s);
    EXPECT_EQ(lost->value().outcome, Outcome::resumed);
    EXPECT_FALSE(http.requests().contains(u"GET /chats/7/messages"_s));
}

TEST_F(RecoveryTest, OtherwiseTheServiceTells) {
    struct Row {
        const char* what;
        int stored;
        Outcome outcome;
        bool isKept;
    };
    connect();
    for (const Row& row : {Row{"as many as before", 2, Outcome::stillInProgress, true},
             Row{"fewer", 1, Outcome::stillInProgress, true}, Row{"more", 3, Outcome::completed, false}}) {
        state.markStarted(7, 2, u"text"_s, {});
        const auto running = recover();
        virtualTime.advance(3s);
        http.open(u"/chats/7/messages"_s).answer(messages(row.stored));
        EXPECT_EQ(running->value().outcome, row.outcome) << row.what;
        EXPECT_EQ(running->value().messageCount, row.isKept ? 0 : row.stored) << row.what;
        EXPECT_EQ(state.getPending().has_value(), row.isKept) << row.what;
    }
    state.markStarted(7, 2, u"text"_s, {});
    const auto running = recover();
    virtualTime.advance(3s);
    http.open(u"/chats/7/messages"_s).fail(URLError::Code::notConnectedToInternet, u"Нет сети"_s);
    EXPECT_EQ(running->value(), (RecoveryResult{.outcome = Outcome::failed, .reason = u"Нет сети"_s}));
    EXPECT_TRUE(state.getPending());
    // A chat that has no number yet cannot be asked for.
    state.markStarted(-1, 0, u"text"_s, {});
    const auto unborn = recover();
    virtualTime.advance(3s);
    EXPECT_EQ(unborn->value().outcome, Outcome::stillInProgress);
}

class TaskNotificationTest : public testing::Test, public Backend {
protected:
    FakeNotifications platform;
    TaskNotificationManager tasks{platform, defaults, virtualTime, notifications};
};

TEST_F(TaskNotificationTest, AsksOnceAndForLongTasksOnly) {
    tasks.trackGeneration(7, u"file"_s, u"Имя"_s);
    EXPECT_EQ(platform.asked, 0);
    EXPECT_EQ(tasks.pendingTask()->type, u"file"_s);
    platform.isGranted = false;
    tasks.trackGeneration(7, u"image"_s, u"Имя"_s);
    tasks.trackGeneration(8, u"video"_s, u"Имя"_s);
    EXPECT_EQ(platform.asked, 1);
    EXPECT_EQ(tasks.pendingTask()->chatId, 8);
    tasks.clearGeneration();
    EXPECT_FALSE(defaults.data(u"com.korvihub.pendingTask"_s));
}

TEST_F(TaskNotificationTest, TellsOfWhatCameWhileTheUserLookedElsewhere) {
    struct Row {
        const char* what;
        bool isInFront;
        bool isTracked;
        std::chrono::seconds took;
        bool isTold;
    };
    const LogCapture log;
    for (const Row& row :
        {Row{"looked at", true, true, 60s, false}, Row{"short and untracked", false, false, 20s, false},
            Row{"long", false, false, 21s, true}, Row{"tracked", false, true, 1s, true}}) {
        platform.shown.clear();
        tasks.clearGeneration();
        tasks.setInFront(row.isInFront);
        const QDateTime asked = virtualTime.now();
        if (row.isTracked)
            tasks.trackGeneration(7, u"image"_s, u"Тайна"_s);
        virtualTime.advance(row.took);
        tasks.answerCompleted(7, u"Тайна"_s, asked);
        EXPECT_EQ(platform.shown.size(), row.isTold ? 1U : 0U) << row.what;
    }
    EXPECT_EQ(platform.shown.front(),
        (UserNotification{
            .id = u"answer-7"_s, .title = u"Ответ готов"_s, .body = u"Тайна"_s, .userInfo = {{"chatId", 7}}}));
    EXPECT_EQ(log.count(u"Тайна"_s), 0) << log.text().toStdString();
}

TEST_F(TaskNotificationTest, ATapLeadsToTheSessionOrTheChat) {
    QStringList heard;
    QObject::connect(
        &notifications, &NotificationCenter::agentSessionCompleted, [&](const QString& id, bool fromNotification) {
            heard.append(u"session "_s + id + (fromNotification ? u"!"_s : u"?"_s));
        });
    QObject::connect(&tasks, &TaskNotificationManager::chatRequested,
        [&](qint64 id, const QString& token) { heard.append(u"chat %1 %2"_s.arg(id).arg(token)); });
    for (const QJsonObject& info : {QJsonObject{{"sessionId", "s"}, {"chatId", 7}}, QJsonObject{{"chatId", 7}},
             QJsonObject{{"chatId", "7"}}, QJsonObject{{"chatId", -1}}, QJsonObject{}})
        emit platform.activated({.id = {}, .title = {}, .body = {}, .userInfo = info}, u"token"_s);
    EXPECT_THAT(heard, testing::ElementsAre(u"session s!"_s, u"chat 7 token"_s));
}

}
}
