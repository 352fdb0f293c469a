#pragma once

#include "Store/AccountStore.h"

#include <chrono>
#include <deque>
#include <optional>
#include <string>

namespace korvi::service {

/// Tickets for one connection attempt each. They live in memory: a client fetches a new one for every attempt.
class Tickets {
public:
    using Clock = std::chrono::steady_clock;

    std::string issue(const SessionRow& session, Clock::time_point now = Clock::now());
    /// The session of a ticket that is known and not expired; the ticket is used up.
    std::optional<SessionRow> redeem(const std::string& ticket, Clock::time_point now = Clock::now());

private:
    struct Entry {
        std::string ticketHash;
        SessionRow session;
        Clock::time_point expiresAt;
    };

    std::deque<Entry> entries_;
};

}
