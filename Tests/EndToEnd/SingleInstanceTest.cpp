// Two real processes on a session bus of the test's own.
#include "SingleInstance.h"
#include "Printing.h"
#include "WaitFor.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QFile>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <csignal>

#include <gtest/gtest.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;

// The client as a process, with files of its own and no service.
class Client {
public:
    explicit Client(const QStringList& arguments = {}, const QString& bus = {}) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove(u"KORVI_INFO"_s);
        environment.insert(u"XDG_DATA_HOME"_s, home.path());
        if (!bus.isEmpty())
            environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, bus);
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(QString::fromLatin1(KORVI_PROGRAM), arguments);
    }
    ~Client() {
        process.kill();
        process.waitForFinished();
    }

    bool endsWell() {
        return waitFor([this] { return process.state() == QProcess::NotRunning; }) && process.exitCode() == 0 &&
            process.exitStatus() == QProcess::NormalExit;
    }
    // It has come past the question whether there is another one.
    bool starts() {
        return waitFor([this] { return QFile::exists(home.filePath(u"korvi/defaults.sqlite"_s)); });
    }
    bool isRunning() const { return process.state() == QProcess::Running; }
    void signal(int number) const { ::kill(static_cast<pid_t>(process.processId()), number); }

    QTemporaryDir home;
    QProcess process;
};

class SingleInstanceTest : public testing::Test {
protected:
    SingleInstanceTest() { qunsetenv("KORVI_INFO"); }

    static void ask(const QString& method, const QVariantList& arguments) {
        QDBusMessage call = QDBusMessage::createMethodCall(
            u"com.korvihub.Korvi"_s, u"/com/korvihub/Korvi"_s, u"org.freedesktop.Application"_s, method);
        call.setArguments(arguments);
        const auto other = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"other"_s);
        const QDBusPendingCall pending = other.asyncCall(call);
        EXPECT_TRUE(waitFor([&] { return pending.isFinished(); })) << method.toStdString();
    }
};

TEST_F(SingleInstanceTest, ASecondStartHandsOverWhatItWasStartedWith) {
    SingleInstance first;
    ASSERT_TRUE(first.claim({}));
    QSignalSpy activated(&first, &SingleInstance::activated);
    QSignalSpy opened(&first, &SingleInstance::urlOpened);
    const QString url = u"korviapp://auth/yandex?a=%D0%90#access_token=t%26&state=s"_s;
    Client withUrl({url});
    EXPECT_TRUE(withUrl.endsWell());
    ASSERT_EQ(opened.count(), 1);
    EXPECT_EQ(opened.at(0).at(0).toUrl(), QUrl(url));
    EXPECT_EQ(activated.count(), 0);
    Client without({u"--option"_s, u"file"_s});
    EXPECT_TRUE(without.endsWell());
    EXPECT_EQ(activated.count(), 1);
    EXPECT_EQ(opened.count(), 1);
    EXPECT_FALSE(QFile::exists(without.home.filePath(u"korvi/defaults.sqlite"_s)));
}

TEST_F(SingleInstanceTest, WhatTheBusBringsIsNotTrusted) {
    SingleInstance first;
    ASSERT_TRUE(first.claim({}));
    QSignalSpy opened(&first, &SingleInstance::urlOpened);
    const QVariantMap nothing;
    ask(u"Open"_s, {QStringList{u""_s, u"relative"_s, u"korviapp://["_s, u"x:"_s + QString(70000, u'a')}, nothing});
    ask(u"Open"_s, {u"korviapp://auth"_s});
    ask(u"Open"_s, {1, 2, 3});
    ask(u"ActivateAction"_s, {u"quit"_s, QVariantList(), nothing});
    EXPECT_EQ(opened.count(), 0);
    QStringList many;
    for (int i = 0; i < 1000; ++i)
        many.append(u"korviapp://auth?%1"_s.arg(i));
    ask(u"Open"_s, {many, QVariantMap{{u"activation-token"_s, QString(5000, u'x')}}});
    EXPECT_EQ(opened.count(), 8);
    EXPECT_FALSE(qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
}

TEST_F(SingleInstanceTest, TheFirstStaysTheSecondGoesAndAnInfoOfItsOwnIsAnotherApplication) {
    Client first;
    ASSERT_TRUE(first.starts());
    Client second;
    EXPECT_TRUE(second.endsWell());
    qputenv("KORVI_INFO", "/nonexistent/Info.json");
    SingleInstance another;
    EXPECT_TRUE(another.claim({}));
    EXPECT_TRUE(first.isRunning());
    first.signal(SIGKILL);
    ASSERT_TRUE(waitFor([&] { return !first.isRunning(); }));
    Client third({u"korviapp://auth?nobody=waits"_s});
    EXPECT_TRUE(third.starts());
    EXPECT_TRUE(third.isRunning());
}

TEST_F(SingleInstanceTest, OneThatDoesNotAnswerIsLeftAloneAfterAWhile) {
    Client first;
    ASSERT_TRUE(first.starts());
    first.signal(SIGSTOP);
    Client second;
    EXPECT_TRUE(second.starts());
    EXPECT_TRUE(second.isRunning());
}

TEST_F(SingleInstanceTest, WithoutASessionBusEveryStartIsTheFirst) {
    for (int i = 0; i < 2; ++i) {
        Client client({}, u"unix:path=/nonexistent"_s);
        EXPECT_TRUE(client.starts());
        EXPECT_TRUE(client.isRunning());
    }
}

}
}
