#include "Chat/ChatDate.h"
#include "Printing.h"

#include <gtest/gtest.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;

const QDateTime now(QDate(2026, 3, 10), QTime(12, 0), Qt::UTC);

// Days are those of the local calendar: the test has one of its own.
class ChatDate : public testing::Test {
protected:
    void SetUp() override { setZone("UTC"); }
    void TearDown() override {
        qunsetenv("TZ");
        tzset();
    }
    void setZone(const char* zone) {
        qputenv("TZ", zone);
        tzset();
    }
};

TEST_F(ChatDate, ReadsEveryFormThatTheServiceMayUse) {
    const QDateTime whole(QDate(2026, 3, 10), QTime(9, 30), Qt::UTC);
    const struct {
        QString text;
        std::optional<QDateTime> date;
    } rows[] = {
        {u"2026-03-10T09:30:00.250+0000"_s, whole.addMSecs(250)},
        {u"2026-03-10T12:30:00+0300"_s, whole},
        {u"2026-03-10T04:00:00.000-0530"_s, whole},
        {u"2026-03-10T09:30:00.250Z"_s, whole.addMSecs(250)},
        {u"2026-03-10T09:30:00Z"_s, whole},
        {u"2026-03-10 09:30:00"_s, whole}, // without a zone: UTC
        {u"2026-03-10T12:30:00.250+03:00"_s, whole.addMSecs(250)},
        {u"2026-03-10T12:30:00+03:00"_s, whole},
        {u"2026-03-10T09:30:00.123456Z"_s, whole.addMSecs(123)},
        {u"2026-03-10T09:30:00.5Z"_s, whole.addMSecs(500)},
        {u"2026-03-10T09:30:00"_s, {}},
        {u"2026-03-10 09:30:00Z"_s, {}},
        {u"2026-02-30T09:30:00Z"_s, {}},
        {u"2026-03-10T25:30:00Z"_s, {}},
        {u"2026-03-10"_s, {}},
        {u""_s, {}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(parseChatDate(row.text), row.date) << row.text.toStdString();
}

TEST_F(ChatDate, SaysHowLongAgoInTheLargestUnitThatFits) {
    const struct {
        QString text;
        QString age;
    } rows[] = {
        {u"2026-03-10T11:59:01Z"_s, u"сейчас"_s},
        {u"2026-03-10T12:00:59Z"_s, u"сейчас"_s}, // the service's clock is ahead
        {u"2026-03-10T12:05:00Z"_s, u"через 5 мин"_s}, {u"2026-03-10T11:59:00Z"_s, u"1 мин"_s},
        {u"2026-03-10T11:00:01Z"_s, u"59 мин"_s}, {u"2026-03-10T11:00:00Z"_s, u"1 ч"_s},
        {u"2026-03-09T12:00:01Z"_s, u"23 ч"_s}, {u"2026-03-09T12:00:00Z"_s, u"вчера"_s},
        {u"2026-03-09T00:00:00Z"_s, u"вчера"_s}, {u"2026-03-08T23:59:59Z"_s, u"2 дн."_s},
        {u"2026-03-04T12:00:00Z"_s, u"6 дн."_s}, {u"2026-03-03T12:00:00Z"_s, u"1 нед."_s},
        {u"2026-02-11T12:00:00Z"_s, u"3 нед."_s}, {u"2026-02-10T12:00:00Z"_s, u"1 мес."_s},
        {u"2025-03-11T12:00:00Z"_s, u"11 мес."_s}, {u"2025-03-10T12:00:00Z"_s, u"1 г."_s},
        {u"2022-03-10T12:00:00Z"_s, u"4 г."_s}, {u"2021-03-10T12:00:00Z"_s, u"5 л."_s},
        {u"2014-03-10T12:00:00Z"_s, u"12 л."_s}, {u"2005-03-10T12:00:00Z"_s, u"21 г."_s},
        {u"позавчера"_s, u"позавчера"_s}, // unreadable: as it came
    };
    for (const auto& row : rows)
        EXPECT_EQ(formatChatDate(row.text, now), row.age) << row.text.toStdString();
}

TEST_F(ChatDate, YesterdayIsTheLocalOne) {
    const QString text = u"2026-03-08T22:30:00Z"_s; // the 9th, half past two, in Samara
    EXPECT_EQ(formatChatDate(text, now), u"2 дн."_s);
    setZone("Europe/Samara");
    EXPECT_EQ(formatChatDate(text, now), u"вчера"_s);
}

}
}
