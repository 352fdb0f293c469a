#include "Chat/ReplayGuard.h"
#include "Printing.h"

#include <gtest/gtest.h>

#include <deque>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;

// What comes after a reconnect, and whether it is of an answer that has ended already.
struct Frame {
    enum Kind { creation, text, thinking, end, bareEnd, silence };
    Kind kind;
    QString content; // of a creation, the chat's number
    bool isOwned = false;
};

class ReplayGuardTest : public testing::Test {
protected:
    const QDateTime start{QDate(2030, 1, 1), QTime(12, 0), Qt::UTC};
    ReplayGuard guard;

    void ended(qint64 chatId, const QString& head, const QString& thought = {}, int secondsAgo = 0) {
        guard.ended({chatId, head, thought, start.addSecs(-secondsAgo)});
    }
    void expect(const std::vector<Frame>& frames) {
        for (std::size_t i = 0; i < frames.size(); ++i) {
            const Frame& frame = frames[i];
            EXPECT_EQ(owns(frame), frame.isOwned) << "frame " << i << ": " << frame.content.toStdString();
        }
    }

private:
    bool owns(const Frame& frame) {
        switch (frame.kind) {
        case Frame::creation: return guard.ownsCreation(frame.content.toLongLong());
        case Frame::text: return guard.ownsPiece(frame.content, AnswerFold::Kind::text);
        case Frame::thinking: return guard.ownsPiece(frame.content, AnswerFold::Kind::thinking);
        case Frame::end: return guard.ownsEnd(false);
        case Frame::bareEnd: return guard.ownsEnd(true);
        case Frame::silence: guard.relax(); return false;
        }
        return false;
    }
};

TEST_F(ReplayGuardTest, NothingIsARepeatWithoutAReconnect) {
    ended(1, u"Здравствуйте"_s);
    expect({{Frame::creation, u"1"_s}, {Frame::text, u"Здравствуйте"_s}, {Frame::end, {}}});
}

TEST_F(ReplayGuardTest, ARepeatedAnswerIsOwnedFromItsBeginningToItsEnd) {
    ended(1, u"Здравствуйте"_s);
    guard.connected(start);
    expect({{Frame::text, u"Здрав"_s, true}, {Frame::text, u"что угодно"_s, true}, {Frame::end, {}, true},
        {Frame::text, u"Здравствуйте"_s}}); // there was one of them
    guard.connected(start);
    expect({{Frame::creation, u"1"_s, true}, {Frame::thinking, u"мысль"_s, true}, {Frame::end, {}, true},
        {Frame::end, {}}});
    guard.connected(start);
    expect({{Frame::text, u"Здравствуйте, это длиннее головы"_s, true}});
}

TEST_F(ReplayGuardTest, WhatIsNotRepeatedFirstIsNeverRepeatedAgain) {
    for (const Frame& other : {Frame{Frame::text, u"Другое"_s}, Frame{Frame::creation, u"2"_s}}) {
        ended(1, u"Здравствуйте"_s);
        guard.connected(start);
        expect({other, {Frame::text, u"Здрав"_s}, {Frame::end, {}}});
        guard.connected(start);
        expect({{Frame::text, u"Здрав"_s}});
    }
    // Of an answer without a word that cannot be told, nor of those beside it.
    ended(1, {});
    ended(2, u"Здравствуйте"_s);
    guard.connected(start);
    expect({{Frame::text, u"Другое"_s}});
    guard.connected(start);
    expect({{Frame::text, u"Здрав"_s, true}});
}

TEST_F(ReplayGuardTest, RepeatsComeInTheirOrderAndMaySkipWhatWasConfirmed) {
    ended(1, u"Первый"_s);
    ended(2, u"Второй"_s, u"долгая мысль о втором"_s);
    ended(3, {}); // without a word
    guard.connected(start);
    expect({{Frame::thinking, u"мысль о"_s, true}, {Frame::text, u"Второй"_s, true}, {Frame::end, {}, true},
        {Frame::end, {}, true}, {Frame::text, u"Первый"_s}});
    guard.connected(start);
    expect({{Frame::end, {}, true}, {Frame::end, {}}}); // of the third
    guard.connected(start);
    expect({{Frame::bareEnd, {}}, {Frame::end, {}}}); // the one that is waited for
}

TEST_F(ReplayGuardTest, WhatIsOlderThanTheServiceKeepsIsForgotten) {
    ended(1, u"Старый"_s, {}, 121);
    ended(2, u"Свежий"_s, {}, 120);
    guard.connected(start);
    EXPECT_EQ(guard.recent().size(), 1U);
    expect({{Frame::text, u"Свежий"_s, true}});
    guard.connected(start.addSecs(1));
    EXPECT_FALSE(guard.isWatching());
    EXPECT_TRUE(guard.recent().empty());
}

TEST_F(ReplayGuardTest, SilenceEndsTheWatchButNotARepeatThatRuns) {
    ended(1, u"Здравствуйте"_s);
    guard.connected(start);
    expect({{Frame::silence, {}}, {Frame::text, u"Здрав"_s}});
    guard.connected(start);
    expect({{Frame::text, u"Здрав"_s, true}, {Frame::silence, {}}, {Frame::text, u"ствуйте"_s, true},
        {Frame::end, {}, true}});
    guard.connected(start);
    guard.clear();
    expect({{Frame::text, u"Здрав"_s}});
}

}
}
