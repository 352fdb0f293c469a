#include "Providers/SseParser.h"

namespace korvi::service {

std::vector<std::string> SseParser::feed(std::string_view bytes) {
    std::vector<std::string> events;
    for (const char c : bytes) {
        if (overflowed_)
            break;
        const bool endsCrLf = c == '\n' && afterCarriageReturn_;
        afterCarriageReturn_ = c == '\r';
        if (endsCrLf)
            continue;
        if (c == '\n' || c == '\r') {
            takeLine(events);
            continue;
        }
        line_ += c;
        overflowed_ = line_.size() + data_.size() > maximumEvent;
    }
    return events;
}

void SseParser::takeLine(std::vector<std::string>& events) {
    std::string_view line(line_);
    if (line.empty()) {
        if (hasData_)
            events.push_back(std::move(data_));
        data_.clear();
        hasData_ = false;
    } else if (line.starts_with("data:")) {
        line.remove_prefix(line.starts_with("data: ") ? 6 : 5);
        if (hasData_)
            data_ += '\n';
        data_ += line;
        hasData_ = true;
    }
    // Comments and the other fields say nothing about the answer.
    line_.clear();
}

}
