// Against the notification server of the session bus that with-notifications.sh starts.
#include "Linux/DesktopNotifications.h"
#include "Linux/LoginSleepMonitor.h"
#include "Running.h"
#include "WaitFor.h"

#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QProcess>

#include <gmock/gmock.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;

class DesktopNotificationsTest : public testing::Test {
protected:
    void SetUp() override {
        if (qEnvironmentVariableIsEmpty("KORVI_WITH_NOTIFICATIONS"))
            GTEST_SKIP() << "no notification server of our own";
        QObject::connect(&desktop, &UserNotifications::activated, [this](const UserNotification& notification) {
            activated.append(notification.id + u' ' + notification.userInfo["chatId"].toVariant().toString());
        });
    }
    static bool isAuthorized(DesktopNotifications& notifications) {
        const Running<bool> asking([&]() -> Task<bool> {
            auto answer = notifications.isAuthorized();
            co_return co_await answer;
        });
        EXPECT_TRUE(waitFor([&] { return asking.isDone(); }));
        return asking.value();
    }
    static QByteArray control(const QStringList& arguments) {
        QProcess process;
        process.start(u"dunstctl"_s, arguments);
        EXPECT_TRUE(process.waitForFinished());
        return process.readAllStandardOutput().trimmed();
    }
    static UserNotification note(const QString& id, qint64 chatId, const QString& body = u"Тело"_s) {
        return {.id = id, .title = u"Ответ готов"_s, .body = body, .userInfo = {{"chatId", chatId}}};
    }
    void show(const UserNotification& notification) {
        const QByteArray before = control({u"count"_s, u"displayed"_s});
        desktop.show(notification);
        EXPECT_TRUE(waitFor([&] { return control({u"count"_s, u"displayed"_s}) != before; }));
    }

    DesktopNotifications desktop{u"Korvi"_s, u"korvi"_s};
    QStringList activated;
};

TEST_F(DesktopNotificationsTest, AreShownReplacedActedUponAndWithdrawn) {
    EXPECT_TRUE(isAuthorized(desktop));
    show(note(u"answer-7"_s, 7, u"<b>a & b</b>"_s));
    EXPECT_EQ(control({u"count"_s, u"displayed"_s}), "1");
    show(note(u"answer-8"_s, 8));
    EXPECT_EQ(control({u"count"_s, u"displayed"_s}), "2");
    desktop.show(note(u"answer-8"_s, 9)); // in the place of the former
    desktop.withdraw(u"answer-7"_s);
    EXPECT_TRUE(waitFor([&] { return control({u"count"_s, u"displayed"_s}) == "1"; }));
    control({u"action"_s, u"0"_s});
    EXPECT_TRUE(waitFor([&] { return !activated.isEmpty(); }));
    EXPECT_THAT(activated, testing::ElementsAre(u"answer-8 9"_s));
    control({u"close-all"_s});
}

// Somebody else's numbers mean nothing here.
TEST_F(DesktopNotificationsTest, OtherProgramsNotificationsAreTheirs) {
    DesktopNotifications other(u"Other"_s, u"other"_s);
    other.show(note(u"answer-5"_s, 5));
    EXPECT_TRUE(waitFor([&] { return control({u"count"_s, u"displayed"_s}) == "1"; }));
    bool isTheirs = false;
    QObject::connect(&other, &UserNotifications::activated, [&] { isTheirs = true; });
    control({u"action"_s, u"0"_s});
    EXPECT_TRUE(waitFor([&] { return isTheirs; }));
    EXPECT_THAT(activated, testing::IsEmpty());
    control({u"close-all"_s});
}

TEST(DesktopNotificationsWithoutBus, NothingHappens) {
    DesktopNotifications desktop(u"Korvi"_s, u"korvi"_s, QDBusConnection(u"none"_s));
    desktop.show({.id = u"a"_s, .title = {}, .body = {}, .userInfo = {}});
    desktop.withdraw(u"a"_s);
    const Running<bool> asking([&]() -> Task<bool> {
        auto answer = desktop.isAuthorized();
        co_return co_await answer;
    });
    EXPECT_FALSE(asking.value());
}

// Tells of what is done with a notification before it answers which one it is.
class HastyServer : public QDBusVirtualObject {
public:
    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        if (message.member() == "GetCapabilities"_L1)
            return bus.send(message.createReply(QStringList()));
        for (const uint somebodys : {number + 1, number}) {
            tell(bus, u"ActionInvoked"_s, {somebodys, u"default"_s});
            tell(bus, u"NotificationClosed"_s, {somebodys, 2U});
        }
        return bus.send(message.createReply(number));
    }
    static void tell(QDBusConnection bus, const QString& what, const QVariantList& arguments) {
        QDBusMessage signal =
            QDBusMessage::createSignal(u"/org/freedesktop/Notifications"_s, u"org.freedesktop.Notifications"_s, what);
        signal.setArguments(arguments);
        bus.send(signal);
    }

    static constexpr uint number = 7;
};

TEST(DesktopNotificationsOfAHastyServer, AreActedUponOnce) {
    QProcess daemon;
    daemon.start(u"dbus-daemon"_s, {u"--session"_s, u"--nofork"_s, u"--print-address"_s});
    if (!daemon.waitForStarted())
        GTEST_SKIP() << "no dbus-daemon";
    ASSERT_TRUE(daemon.waitForReadyRead());
    const QString address = QString::fromUtf8(daemon.readLine().trimmed());
    QDBusConnection far = QDBusConnection::connectToBus(address, u"far"_s);
    HastyServer server;
    ASSERT_TRUE(far.registerVirtualObject(u"/org/freedesktop/Notifications"_s, &server));
    ASSERT_TRUE(far.registerService(u"org.freedesktop.Notifications"_s));
    {
        DesktopNotifications desktop(u"Korvi"_s, u"korvi"_s, QDBusConnection::connectToBus(address, u"near"_s));
        QStringList activated;
        QObject::connect(&desktop, &UserNotifications::activated,
            [&](const UserNotification& notification) { activated.append(notification.id); });
        desktop.show({.id = u"answer-7"_s, .title = {}, .body = {}, .userInfo = {}});
        EXPECT_TRUE(waitFor([&] { return !activated.isEmpty(); }));
        // It is closed by now.
        HastyServer::tell(far, u"ActionInvoked"_s, {HastyServer::number, u"default"_s});
        settle();
        EXPECT_THAT(activated, testing::ElementsAre(u"answer-7"_s));
    }
    QDBusConnection::disconnectFromBus(u"near"_s);
    QDBusConnection::disconnectFromBus(u"far"_s);
    daemon.terminate();
    daemon.waitForFinished();
}

// The login manager's place, taken on the bus of the test.
TEST(LoginSleepMonitor, TellsOfBothEndsOfTheSleep) {
    if (qEnvironmentVariableIsEmpty("KORVI_WITH_NOTIFICATIONS"))
        GTEST_SKIP() << "no bus of our own";
    QDBusConnection bus = QDBusConnection::sessionBus();
    LoginSleepMonitor monitor(bus);
    QStringList heard;
    QObject::connect(&monitor, &SleepMonitor::aboutToSleep, [&] { heard.append(u"sleep"_s); });
    QObject::connect(&monitor, &SleepMonitor::awoke, [&] { heard.append(u"awake"_s); });
    QDBusConnection manager = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"manager"_s);
    ASSERT_TRUE(manager.registerService(u"org.freedesktop.login1"_s));
    for (const bool begins : {true, false}) {
        QDBusMessage signal = QDBusMessage::createSignal(
            u"/org/freedesktop/login1"_s, u"org.freedesktop.login1.Manager"_s, u"PrepareForSleep"_s);
        signal.setArguments({begins});
        manager.send(signal);
    }
    EXPECT_TRUE(waitFor([&] { return heard.size() == 2; }));
    EXPECT_THAT(heard, testing::ElementsAre(u"sleep"_s, u"awake"_s));
    QDBusConnection::disconnectFromBus(u"manager"_s);
}

}
}
