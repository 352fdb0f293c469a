#include "Auth/Tickets.h"

#include "Core/Limits.h"
#include "Core/Secrets.h"

#include <algorithm>

namespace korvi::service {

std::string Tickets::issue(const SessionRow& session, Clock::time_point now) {
    std::erase_if(entries_, [&](const Entry& entry) { return entry.expiresAt <= now; });
    const auto isOwn = [&](const Entry& entry) { return entry.session.id == session.id; };
    if (static_cast<std::size_t>(std::count_if(entries_.begin(), entries_.end(), isOwn)) >= limits::ticketsPerSession)
        entries_.erase(std::find_if(entries_.begin(), entries_.end(), isOwn));
    std::string ticket = randomToken();
    entries_.push_back({sha256Hex(ticket), session, now + limits::ticketLife});
    return ticket;
}

std::optional<SessionRow> Tickets::redeem(const std::string& ticket, Clock::time_point now) {
    const std::string hash = sha256Hex(ticket);
    const auto found =
        std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) { return entry.ticketHash == hash; });
    if (found == entries_.end())
        return std::nullopt;
    const Entry entry = *found;
    entries_.erase(found);
    return entry.expiresAt > now ? std::optional(entry.session) : std::nullopt;
}

}
