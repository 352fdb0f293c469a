#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace korvi::service {

/// Server-sent events from a stream of bytes that is split anywhere (WHATWG HTML, "Server-sent events"). Only the data of
/// an event is of interest here.
class SseParser {
public:
    static constexpr std::size_t maximumEvent = std::size_t{1024} * 1024;

    /// The data of the events that `bytes` completes.
    std::vector<std::string> feed(std::string_view bytes);
    /// An event grew beyond `maximumEvent`; nothing more is parsed.
    bool overflowed() const { return overflowed_; }

private:
    void takeLine(std::vector<std::string>& events);

    std::string line_;
    std::string data_;
    bool hasData_ = false;
    bool afterCarriageReturn_ = false;
    bool overflowed_ = false;
};

}
