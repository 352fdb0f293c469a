#include "Defaults.h"
#include "FakePaths.h"
#include "Info.h"
#include "NotificationCenter.h"
#include "Printing.h"
#include "Shell/NetworkMonitor.h"
#include "Shell/ReviewManager.h"
#include "VirtualScheduler.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using namespace std::chrono_literals;
using Interface = NetworkPath::Interface;

TEST(NetworkMonitor, TellsOfTheEdgesAndOnlyOfThem) {
    FakePaths paths;
    NotificationCenter notifications;
    QStringList heard;
    QObject::connect(
        &notifications, &NotificationCenter::networkDidBecomeAvailable, [&] { heard.append(u"available"_s); });
    QObject::connect(
        &notifications, &NotificationCenter::networkDidBecomeUnavailable, [&] { heard.append(u"unavailable"_s); });
    NetworkMonitor network(paths, notifications);
    EXPECT_TRUE(network.isConnected());
    EXPECT_EQ(network.connectionType(), u"Unknown"_s);
    network.start();

    struct Row {
        const char* what;
        NetworkPath path;
        bool isConnected;
        QString type;
        QStringList heard; // so far
    };
    const QStringList lost{u"unavailable"_s};
    const QStringList back{u"unavailable"_s, u"available"_s};
    const Row rows[]{
        {"connected from the start", {true, {Interface::wifi}}, true, u"WiFi"_s, {}},
        {"another kind of network", {true, {Interface::wiredEthernet}}, true, u"Ethernet"_s, {}},
        {"gone", {false, {}}, false, u"Unknown"_s, lost},
        {"still gone", {false, {}}, false, u"Unknown"_s, lost},
        {"back", {true, {Interface::cellular}}, true, u"Cellular"_s, back},
        {"said twice", {true, {Interface::cellular}}, true, u"Cellular"_s, back},
        {"wireless comes before the cable", {true, {Interface::wiredEthernet, Interface::wifi}}, true, u"WiFi"_s, back},
        {"mobile as well", {true, {Interface::wiredEthernet, Interface::cellular}}, true, u"Cellular"_s, back},
        {"a tunnel", {true, {Interface::other}}, true, u"Unknown"_s, back},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        paths.change(row.path);
        EXPECT_EQ(network.isConnected(), row.isConnected);
        EXPECT_EQ(network.connectionType(), row.type);
        EXPECT_EQ(heard, row.heard);
    }
}

class Review : public testing::Test {
protected:
    Info info{QJsonObject{{"CFBundleShortVersionString", "2.5"}}};
    QTemporaryDir folder;
    VirtualScheduler time;
    Defaults defaults{folder.filePath(u"defaults.sqlite"_s)};
    std::unique_ptr<ReviewManager> reviews = std::make_unique<ReviewManager>(defaults, info, time, time);

    void have(qint64 sessions, qint64 messages) {
        defaults.setInteger(u"review_sessionCount"_s, sessions);
        defaults.setInteger(u"review_messageCount"_s, messages);
    }
    void lastPrompt(const QString& version, const QString& date) {
        defaults.setString(u"review_lastPromptVersion"_s, version);
        defaults.setString(u"review_lastPromptDate"_s, date);
    }
    bool fires() {
        const auto before = defaults.string(u"review_lastPromptDate"_s);
        reviews->requestReviewIfAppropriate();
        time.advance(1999ms);
        EXPECT_EQ(defaults.string(u"review_lastPromptDate"_s), before);
        time.advance(1ms);
        return defaults.string(u"review_lastPromptVersion"_s) == u"2.5"_s &&
            defaults.string(u"review_lastPromptDate"_s) == time.now().toString(Qt::ISODate);
    }
};

TEST_F(Review, FiresAtTheToldMoments) {
    struct Row {
        qint64 sessions;
        qint64 messages;
        bool fires;
    };
    for (const Row& row : {Row{3, 9, false}, Row{4, 9, true}, Row{5, 9, false}, Row{1, 10, true}, Row{1, 11, false},
             Row{1, 59, false}, Row{1, 60, true}, Row{1, 61, false}, Row{1, 110, true}, Row{1, 160, true}}) {
        SCOPED_TRACE(testing::Message() << row.sessions << " sessions, " << row.messages << " messages");
        defaults.remove(u"review_lastPromptVersion"_s);
        defaults.remove(u"review_lastPromptDate"_s);
        have(row.sessions, row.messages);
        EXPECT_EQ(fires(), row.fires);
    }
}

TEST_F(Review, CountsWhatItIsToldOf) {
    have(3, 8);
    reviews->recordSession();
    reviews->recordMessage();
    EXPECT_TRUE(fires()); // the fourth session
    reviews->recordMessage();
    const auto date = defaults.string(u"review_lastPromptDate"_s);
    time.advance(1min);
    reviews->requestReviewIfAppropriate(); // the tenth message, but this version has had its moment
    time.advance(1min);
    EXPECT_EQ(defaults.string(u"review_lastPromptDate"_s), date);
    EXPECT_EQ(defaults.integer(u"review_messageCount"_s), 10);
}

TEST_F(Review, WaitsForAnotherVersionAndForThirtyDays) {
    struct Row {
        const char* what;
        QString version;
        QString date;
        bool fires;
    };
    const auto daysAgo = [this](qint64 days, qint64 seconds = 0) {
        return time.now().addDays(-days).addSecs(seconds).toString(Qt::ISODate);
    };
    for (const Row& row : std::initializer_list<Row>{
             {"this version", u"2.5"_s, daysAgo(100), false},
             {"too soon", u"2.4"_s, daysAgo(30, 60), false},
             {"thirty days", u"2.4"_s, daysAgo(30), true},
             {"a date from the future", u"2.4"_s, daysAgo(-1), false},
             {"no date at all", u"2.4"_s, u"вчера"_s, false},
         }) {
        SCOPED_TRACE(row.what);
        have(4, 0);
        lastPrompt(row.version, row.date);
        const auto before = defaults.string(u"review_lastPromptDate"_s);
        reviews->requestReviewIfAppropriate();
        time.advance(2s);
        EXPECT_EQ(defaults.string(u"review_lastPromptDate"_s) != before, row.fires);
    }
}

TEST_F(Review, TheMomentCountsAsUsedWhenTheApplicationEndsMeanwhile) {
    have(4, 0);
    reviews->requestReviewIfAppropriate();
    time.advance(1s);
    reviews.reset();
    EXPECT_EQ(defaults.string(u"review_lastPromptVersion"_s), u"2.5"_s);
    EXPECT_EQ(defaults.string(u"review_lastPromptDate"_s), time.now().toString(Qt::ISODate));
}

}
}
