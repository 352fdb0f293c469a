#pragma once

#include "Chat/Piece.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace korvi::service {

enum class AnswerState { running, done, aborted, failed, interrupted };

constexpr std::string_view nameOf(AnswerState state) {
    switch (state) {
    case AnswerState::running: return "running";
    case AnswerState::done: return "done";
    case AnswerState::aborted: return "aborted";
    case AnswerState::failed: return "failed";
    case AnswerState::interrupted: return "interrupted";
    }
    return "failed";
}

/// One generation: what a session asked for, what has come of it and how much of that the session has surely got.
/// Outlives the connection that asked for it, and with its rows the process.
struct Answer {
    /// The row of the answer's message; 0 for a request that was refused and has no row.
    long long messageId = 0;
    /// 0 if the error belongs to no chat.
    long long chatId = 0;
    std::string userId;
    std::string sessionId;
    bool createsChat = false;
    AnswerState state = AnswerState::running;
    /// Russian, for the user; empty unless the answer failed.
    std::string error;
    /// Milliseconds since the epoch; 0 while running.
    long long endedAt = 0;

    std::vector<Piece> pieces;
    /// Pieces that are in the database: the only ones that may be sent.
    std::size_t stored = 0;

    // Confirmed: the peer has answered a ping that was sent behind it.
    bool createConfirmed = false;
    std::size_t piecesConfirmed = 0;

    bool running() const { return state == AnswerState::running; }
};

}
