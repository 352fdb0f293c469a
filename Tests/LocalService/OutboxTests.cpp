#include "Chat/Outbox.h"

#include <gmock/gmock.h>

namespace korvi::service {
namespace {

using testing::ElementsAre;

struct Host : Outbox::Host {
    std::vector<long long> gone;
    std::string createFrame(const Answer& answer) override { return "create " + std::to_string(answer.chatId); }
    void confirmed(const Answer&) override {}
    void delivered(const Answer& answer) override { gone.push_back(answer.messageId); }
};

std::string chunk(const std::string& text) {
    return R"({"data":{"content":")" + text + R"("},"event":"chunk"})";
}
std::string thinking(const std::string& text) {
    return R"({"data":{"content":")" + text + R"("},"event":"thinking"})";
}
const std::string end = R"({"data":{},"event":"end"})";

std::shared_ptr<Answer> answer(long long id, std::vector<Piece> pieces, AnswerState state = AnswerState::done) {
    auto result = std::make_shared<Answer>();
    result->messageId = result->chatId = id;
    result->pieces = std::move(pieces);
    result->stored = result->pieces.size();
    result->state = state;
    return result;
}

std::vector<std::string> drain(Outbox& outbox) {
    std::vector<std::string> frames;
    while (auto frame = outbox.next())
        frames.push_back(*frame);
    return frames;
}

struct OutboxTest : testing::Test {
    Host host;
    Outbox outbox{host};
};

TEST_F(OutboxTest, TwoAnswersAreNeverInterleaved) {
    const auto first = answer(1, {{PieceKind::text, "a"}}, AnswerState::running);
    outbox.add(first);
    outbox.add(answer(2, {{PieceKind::text, "x"}}));
    EXPECT_THAT(drain(outbox), ElementsAre(chunk("a")));
    first->pieces.push_back({PieceKind::text, "b"});
    EXPECT_THAT(drain(outbox), ElementsAre()) << "what is not stored is not sent";
    first->stored = 2;
    EXPECT_THAT(drain(outbox), ElementsAre(chunk("b")));
    first->state = AnswerState::done;
    EXPECT_THAT(drain(outbox), ElementsAre(end, chunk("x"), end));
}

TEST_F(OutboxTest, WhatWasNotConfirmedComesAgainWithTheSameBorders) {
    const auto only = answer(7, {{PieceKind::text, "a"}, {PieceKind::text, "b"}});
    only->createsChat = true;
    outbox.add(only);
    const std::vector<std::string> all = drain(outbox);
    EXPECT_THAT(all, ElementsAre("create 7", chunk("a"), chunk("b"), end));
    outbox.rewind();
    EXPECT_EQ(outbox.next(), "create 7");
    const auto afterCreate = outbox.mark();
    outbox.next();
    outbox.confirm(afterCreate);
    outbox.rewind();
    EXPECT_THAT(drain(outbox), ElementsAre(chunk("a"), chunk("b"), end));
    outbox.confirm(outbox.mark());
    EXPECT_TRUE(outbox.empty());
    EXPECT_THAT(host.gone, ElementsAre(7));
    outbox.rewind();
    EXPECT_THAT(drain(outbox), ElementsAre());
}

TEST_F(OutboxTest, ReasoningWaitsForItsConfirmationAndIsNotRepeatedAfterIt) {
    outbox.add(answer(1, {{PieceKind::thinking, "m"}, {PieceKind::thinking, "n"}, {PieceKind::text, "a"}}));
    EXPECT_THAT(drain(outbox), ElementsAre(thinking("m")));
    outbox.rewind();
    EXPECT_THAT(drain(outbox), ElementsAre(thinking("m"))) << "nobody knows whether it arrived";
    outbox.confirm(outbox.mark());
    EXPECT_THAT(drain(outbox), ElementsAre(thinking("n"), chunk("a"), end));
    outbox.rewind();
    EXPECT_THAT(drain(outbox), ElementsAre(thinking("n"), chunk("a"), end));
    const auto mark = outbox.mark();
    outbox.rewind();
    outbox.confirm(mark);
    EXPECT_TRUE(outbox.empty());
}

TEST_F(OutboxTest, OnlyAnswersThatEndedLongAgoAreDropped) {
    const auto old = answer(1, {});
    old->endedAt = 100;
    const auto fresh = answer(2, {{PieceKind::text, "a"}});
    fresh->endedAt = 300;
    outbox.add(old);
    outbox.add(fresh);
    outbox.dropExpired(200);
    EXPECT_THAT(drain(outbox), ElementsAre(chunk("a"), end));
}

}
}
