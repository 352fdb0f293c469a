#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <map>
#include <optional>
#include <string>

namespace korvi::service {

/// At most so many events of one key, and of all keys together, within a window of time.
class RateLimiter {
public:
    using Clock = std::chrono::steady_clock;

    RateLimiter(std::size_t perKey, std::size_t inAll, Clock::duration window)
        : perKey_(perKey)
        , inAll_(inAll)
        , window_(window) {}

    /// Absent if the event is allowed, and then it counts; else how long to wait.
    std::optional<std::chrono::seconds> take(const std::string& key, Clock::time_point now = Clock::now()) {
        while (!all_.empty() && all_.front().at + window_ <= now) {
            const auto entry = counts_.find(all_.front().key);
            if (--entry->second == 0)
                counts_.erase(entry);
            all_.pop_front();
        }
        const auto found = counts_.find(key);
        if (all_.size() < inAll_ && (found == counts_.end() || found->second < perKey_)) {
            all_.push_back({now, key});
            ++counts_[key];
            return std::nullopt;
        }
        auto oldest = all_.begin();
        if (all_.size() < inAll_)
            while (oldest->key != key)
                ++oldest;
        return std::chrono::duration_cast<std::chrono::seconds>(oldest->at + window_ - now) + std::chrono::seconds(1);
    }

private:
    struct Event {
        Clock::time_point at;
        std::string key;
    };

    std::size_t perKey_;
    std::size_t inAll_;
    Clock::duration window_;
    std::deque<Event> all_;
    std::map<std::string, std::size_t> counts_;
};

}
