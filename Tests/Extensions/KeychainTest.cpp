#include "Linux/SecretServiceKeychain.h"
#include "LogCapture.h"
#include "Printing.h"
#include "Running.h"
#include "WaitFor.h"

#include <QElapsedTimer>

#include <gmock/gmock.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;

const QString service = u"com.korvihub.test"_s;
const QString account = u"запись"_s;

bool withKeyring() {
    return qEnvironmentVariableIsSet("KORVI_WITH_KEYRING");
}

QByteArray read(Keychain& keychain) {
    const Running<Secret> reading([&]() -> Task<Secret> { co_return co_await keychain.read(service, account); });
    EXPECT_TRUE(waitFor([&] { return reading.isDone(); }));
    return reading.value().reveal();
}
Keychain::Outcome write(Keychain& keychain, const QByteArray& value) {
    const Running<Keychain::Outcome> writing([&]() -> Task<Keychain::Outcome> {
        const Secret secret(value);
        co_return co_await keychain.write(service, account, secret);
    });
    EXPECT_TRUE(waitFor([&] { return writing.isDone(); }));
    return writing.value();
}
Keychain::Outcome remove(Keychain& keychain) {
    const Running<Keychain::Outcome> removing(
        [&]() -> Task<Keychain::Outcome> { co_return co_await keychain.remove(service, account); });
    EXPECT_TRUE(waitFor([&] { return removing.isDone(); }));
    return removing.value();
}

TEST(Keychain, WithoutASessionBusItRefusesAtOnceAndSaysWhy) {
    if (withKeyring())
        GTEST_SKIP();
    SecretServiceKeychain keychain;
    const LogCapture log;
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(read(keychain), QByteArray());
    const Keychain::Outcome outcome = write(keychain, "tok-secret");
    EXPECT_FALSE(outcome.ok);
    EXPECT_FALSE(outcome.status.isEmpty());
    EXPECT_FALSE(remove(keychain).ok);
    EXPECT_LT(timer.elapsed(), 5000);
    EXPECT_EQ(log.count(u"tok-secret"_s), 0) << log.text().toStdString();
}

TEST(Keychain, AReaderThatGivesUpIsNotWokenLater) {
    SecretServiceKeychain keychain;
    {
        const Running<Secret> reading([&]() -> Task<Secret> { co_return co_await keychain.read(service, account); });
    }
    settle();
    EXPECT_EQ(read(keychain), QByteArray());
}

TEST(Keychain, ASecretIsKeptReplacedAndRemoved) {
    if (!withKeyring())
        GTEST_SKIP();
    SecretServiceKeychain keychain;
    EXPECT_EQ(read(keychain), QByteArray());
    const Keychain::Outcome first = write(keychain, "один");
    ASSERT_TRUE(first.ok) << first.status.toStdString();
    EXPECT_EQ(read(keychain), QByteArray("один"));
    EXPECT_TRUE(write(keychain, "two").ok);
    SecretServiceKeychain again;
    EXPECT_EQ(read(again), QByteArray("two"));
    EXPECT_TRUE(remove(again).ok);
    EXPECT_EQ(read(keychain), QByteArray());
}

}
}
