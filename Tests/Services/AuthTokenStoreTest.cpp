#include "Backend.h"
#include "LogCapture.h"

#include <gmock/gmock.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;

const QString item = u"com.korvihub.app.auth/authToken"_s;
const QString currentKey = u"com.korvihub.authToken"_s;
const QString oldKey = u"authToken"_s;

class AuthTokenStoreTest : public testing::Test {
protected:
    QByteArray stored(AuthTokenStore& store) {
        const Running<Secret> reading([&] { return store.read(); });
        return reading.value().reveal();
    }
    void write(AuthTokenStore& store, const QByteArray& token) {
        const Running<void> writing([&] { return store.write(Secret(token)); });
        writing.value();
    }

    QTemporaryDir folder;
    FakeKeychain keychain;
    Defaults defaults{folder.filePath(u"defaults.sqlite"_s)};
    Defaults group{folder.filePath(u"group.sqlite"_s)};
};

TEST_F(AuthTokenStoreTest, TheTokenComesFromTheFirstPlaceThatHasOneAndMovesToTheKeychain) {
    struct Row {
        const char* name;
        QByteArray inKeychain, inDefaults, legacy;
        QByteArray token;
    };
    for (const Row& row : {
             Row{"nowhere", "", "", "", ""},
             Row{"everywhere", "k", "d", "l", "k"},
             Row{"defaults", "", "d", "l", "d"},
             Row{"legacy", "", "", "l", "l"},
         }) {
        SCOPED_TRACE(row.name);
        keychain.items.clear();
        if (!row.inKeychain.isEmpty())
            keychain.items.insert(item, row.inKeychain);
        defaults.setData(currentKey, row.inDefaults);
        defaults.setData(oldKey, row.legacy);
        AuthTokenStore store(keychain, defaults, &group);
        EXPECT_EQ(stored(store), row.token);
        EXPECT_EQ(keychain.items.value(item), row.token);
        if (row.token == "l") {
            EXPECT_EQ(defaults.data(oldKey), std::nullopt);
            EXPECT_EQ(defaults.data(currentKey), QByteArray("l"));
        }
        AuthTokenStore next(keychain, defaults, &group);
        EXPECT_EQ(stored(next), row.token) << "after a restart";
    }
}

TEST_F(AuthTokenStoreTest, WritingReachesEveryStoreAndClearingLeavesNothing) {
    AuthTokenStore store(keychain, defaults, &group);
    write(store, "tok");
    EXPECT_EQ(keychain.items.value(item), "tok");
    EXPECT_EQ(defaults.data(currentKey), QByteArray("tok"));
    EXPECT_EQ(group.data(oldKey), QByteArray("tok"));
    write(store, "");
    EXPECT_TRUE(keychain.items.isEmpty());
    EXPECT_EQ(defaults.data(currentKey), std::nullopt);
    EXPECT_EQ(group.data(oldKey), std::nullopt);
    AuthTokenStore next(keychain, defaults, nullptr);
    EXPECT_EQ(stored(next), QByteArray());
}

TEST_F(AuthTokenStoreTest, WithARefusingKeychainTheTokenSurvivesARestartAndTheLogSaysWhyWithoutIt) {
    const LogCapture log;
    keychain.manner = FakeKeychain::Manner::refuses;
    AuthTokenStore store(keychain, defaults, nullptr);
    write(store, "tok-secret");
    EXPECT_EQ(stored(store), "tok-secret");
    AuthTokenStore next(keychain, defaults, nullptr);
    EXPECT_EQ(stored(next), "tok-secret");
    EXPECT_GE(
        log.count(
            u"⚠️ [APIClient] Keychain save failed: 7 Cannot autolaunch D-Bus — token stored in UserDefaults only"_s),
        1)
        << log.text().toStdString();
    EXPECT_EQ(log.count(u"tok-secret"_s), 0) << log.text().toStdString();
}

TEST_F(AuthTokenStoreTest, TheKeychainIsAskedOnce) {
    keychain.items.insert(item, "tok");
    AuthTokenStore store(keychain, defaults, &group);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(stored(store), "tok");
    EXPECT_EQ(keychain.reads, 1);
}

TEST_F(AuthTokenStoreTest, ATokenWrittenWhileTheKeychainIsStillThinkingCounts) {
    keychain.items.insert(item, "old");
    keychain.manner = FakeKeychain::Manner::answersLate;
    AuthTokenStore store(keychain, defaults, &group);
    const Running<Secret> reading([&] { return store.read(); });
    const Running<void> writing([&] { return store.write(Secret("new")); });
    keychain.answerAll();
    EXPECT_EQ(reading.value().reveal(), "new");
    EXPECT_EQ(keychain.items.value(item), "new");
}

TEST_F(AuthTokenStoreTest, ClearingWhileTheTokenIsStillBeingSavedLeavesNoneInTheKeychain) {
    keychain.manner = FakeKeychain::Manner::answersLate;
    AuthTokenStore store(keychain, defaults, &group);
    for (int answersBefore = 0; answersBefore < 2; ++answersBefore) {
        const Running<void> signingIn([&] { return store.write(Secret("tok")); });
        for (int i = 0; i < answersBefore; ++i)
            keychain.answerNext();
        const Running<void> signingOut([&] { return store.write(Secret()); });
        keychain.answerAll();
        EXPECT_TRUE(keychain.items.isEmpty()) << "signed out after " << answersBefore << " answers of the keychain";
        EXPECT_TRUE(signingIn.isDone());
        EXPECT_TRUE(signingOut.isDone());
    }
}

TEST_F(AuthTokenStoreTest, OfTwoTokensWrittenTogetherTheLaterStays) {
    keychain.manner = FakeKeychain::Manner::answersLate;
    AuthTokenStore store(keychain, defaults, &group);
    const Running<void> first([&] { return store.write(Secret("one")); });
    const Running<void> second([&] { return store.write(Secret("two")); });
    keychain.answerAll();
    EXPECT_EQ(keychain.items.value(item), "two");
    EXPECT_EQ(defaults.data(currentKey), QByteArray("two"));
}

}
}
