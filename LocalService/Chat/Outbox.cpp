#include "Chat/Outbox.h"

#include "Chat/Frames.h"

#include <algorithm>

namespace korvi::service {

void Outbox::rewind() {
    cursor_ = {firstNumber_, 0};
    lastThinking_.reset();
}

std::optional<std::string> Outbox::next() {
    while (cursor_.answer - firstNumber_ < answers_.size()) {
        const Answer& answer = *answers_[cursor_.answer - firstNumber_];
        if (auto frame = nextOf(answer))
            return frame;
        if (answer.running() || cursor_.frames < allFrames(answer))
            return std::nullopt;
        cursor_ = {cursor_.answer + 1, 0};
        lastThinking_.reset();
    }
    return std::nullopt;
}

std::optional<std::string> Outbox::nextOf(const Answer& answer) {
    const std::size_t front = frontFrames(answer);
    if (cursor_.frames < front) {
        cursor_.frames = front;
        if (!answer.createConfirmed)
            if (auto frame = host_.createFrame(answer); !frame.empty())
                return frame;
    }
    while (cursor_.frames - front < answer.stored) {
        const std::size_t index = cursor_.frames - front;
        const Piece& piece = answer.pieces[index];
        if (piece.kind == PieceKind::thinking) {
            // The client recognises repeated reasoning only by the end of what it has. So what has arrived is not sent
            // again, and no piece follows before the one in front of it has arrived.
            if (index < answer.piecesConfirmed) {
                ++cursor_.frames;
                continue;
            }
            if (lastThinking_ && *lastThinking_ >= answer.piecesConfirmed)
                return std::nullopt;
            lastThinking_ = index;
        }
        ++cursor_.frames;
        return piece.kind == PieceKind::tool ? host_.outgoing(frames::piece(piece)) : frames::piece(piece);
    }
    if (!answer.running() && cursor_.frames == front + answer.pieces.size()) {
        ++cursor_.frames;
        return answer.error.empty() ? frames::end() : frames::error(answer.chatId, answer.error);
    }
    return std::nullopt;
}

void Outbox::confirm(const Mark& mark) {
    while (!answers_.empty() && firstNumber_ <= mark.answer) {
        Answer& answer = *answers_.front();
        const std::size_t frames = firstNumber_ < mark.answer ? allFrames(answer) : mark.frames;
        const std::size_t front = frontFrames(answer);
        if (!answer.running() && frames == allFrames(answer)) {
            host_.delivered(answer);
            answers_.pop_front();
            ++firstNumber_;
            if (cursor_.answer < firstNumber_)
                rewind();
            continue;
        }
        const std::size_t pieces = frames > front ? frames - front : 0;
        if ((frames >= front && front > 0 && !answer.createConfirmed) || pieces > answer.piecesConfirmed) {
            answer.createConfirmed = front > 0 && frames >= front;
            answer.piecesConfirmed = std::max(answer.piecesConfirmed, pieces);
            host_.confirmed(answer);
        }
        return;
    }
}

void Outbox::dropExpired(long long endedBefore) {
    while (!answers_.empty() && !answers_.front()->running() && answers_.front()->endedAt < endedBefore) {
        host_.delivered(*answers_.front());
        answers_.pop_front();
        ++firstNumber_;
    }
    rewind();
}

std::size_t Outbox::notices() const {
    return static_cast<std::size_t>(
        std::count_if(answers_.begin(), answers_.end(), [](const auto& answer) { return answer->messageId == 0; }));
}

}
