#pragma once

#include "Chat/Answer.h"

#include <cstddef>
#include <deque>
#include <memory>
#include <optional>
#include <string>

namespace korvi::service {

/// What a session still has to get: its answers in the order in which they were asked for, one after the other.
///
/// Frames are pulled, so nothing piles up for a slow reader. After a reconnect everything that was not confirmed is
/// sent again with the same borders.
class Outbox {
public:
    class Host {
    public:
        virtual ~Host() = default;
        /// The frame that announces the answer's new chat; empty if the chat is gone.
        virtual std::string createFrame(const Answer& answer) = 0;
        /// A tool's frame as it goes out.
        virtual std::string outgoing(std::string frame) { return frame; }
        virtual void confirmed(const Answer& answer) = 0;
        virtual void delivered(const Answer& answer) = 0;
    };

    /// How far sending has come.
    struct Mark {
        std::size_t answer = 0;
        std::size_t frames = 0;
        bool operator==(const Mark&) const = default;
    };

    explicit Outbox(Host& host)
        : host_(host) {}

    void add(std::shared_ptr<Answer> answer) { answers_.push_back(std::move(answer)); }
    /// A new connection: what is not confirmed goes out again.
    void rewind();
    /// The next frame to send, if there is one now.
    std::optional<std::string> next();
    Mark mark() const { return cursor_; }
    /// Everything sent before `mark` was taken has arrived.
    void confirm(const Mark& mark);
    /// Drops ended answers that nobody has come back for. `endedBefore` in milliseconds since the epoch.
    void dropExpired(long long endedBefore);

    bool empty() const { return answers_.empty(); }
    std::size_t notices() const;
    const std::deque<std::shared_ptr<Answer>>& answers() const { return answers_; }

private:
    /// Frames in front of the first piece: the announcement of a new chat.
    static std::size_t frontFrames(const Answer& answer) { return answer.createsChat ? 1 : 0; }
    static std::size_t allFrames(const Answer& answer) { return frontFrames(answer) + answer.pieces.size() + 1; }
    std::optional<std::string> nextOf(const Answer& answer);

    Host& host_;
    std::deque<std::shared_ptr<Answer>> answers_;
    // The number that the front of `answers_` bears: marks stay valid when answers leave the front.
    std::size_t firstNumber_ = 0;
    Mark cursor_;
    // Of the answer under the cursor: the reasoning piece sent last on this connection.
    std::optional<std::size_t> lastThinking_;
};

}
