#include "Tools/ArgumentStream.h"

namespace korvi::service {

namespace {

constexpr unsigned replacement = 0xFFFD;

bool isBlank(char c) {
    return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}

void appendPoint(std::string& out, unsigned point) {
    // A NUL would end the text for half of those who read it.
    if (point == 0)
        return;
    const auto put = [&out](unsigned byte) { out += static_cast<char>(byte); };
    if (point < 0x80U) {
        put(point);
    } else if (point < 0x800U) {
        put(0xC0U | (point >> 6U));
        put(0x80U | (point & 0x3FU));
    } else if (point < 0x10000U) {
        put(0xE0U | (point >> 12U));
        put(0x80U | ((point >> 6U) & 0x3FU));
        put(0x80U | (point & 0x3FU));
    } else {
        put(0xF0U | (point >> 18U));
        put(0x80U | ((point >> 12U) & 0x3FU));
        put(0x80U | ((point >> 6U) & 0x3FU));
        put(0x80U | (point & 0x3FU));
    }
}

}

std::vector<ArgumentStream::Part> ArgumentStream::feed(std::string_view bytes) {
    std::vector<Part> parts;
    for (const char c : bytes)
        take(c, parts);
    // A surrogate still waits for its other half.
    if (state_ == State::string && !text_.empty()) {
        parts.push_back({key_, std::move(text_), false});
        text_.clear();
    }
    return parts;
}

void ArgumentStream::take(char c, std::vector<Part>& parts) {
    switch (state_) {
    case State::before:
        if (c == '{')
            state_ = State::comma, key_.clear(), depth_ = 0;
        else if (!isBlank(c))
            state_ = State::broken;
        return;
    case State::comma:
        // Before a key, or behind a value.
        if (c == '"')
            state_ = State::key, key_.clear();
        else if (c == '}')
            state_ = State::complete;
        else if (c != ',' && !isBlank(c))
            state_ = State::broken;
        return;
    case State::key:
        if (takeString(c, key_))
            state_ = State::colon;
        return;
    case State::colon:
        if (c == ':')
            state_ = State::value;
        else if (!isBlank(c))
            state_ = State::broken;
        return;
    case State::value:
        if (isBlank(c))
            return;
        if (c == '"') {
            state_ = State::string;
            text_.clear();
        } else {
            state_ = State::other;
            depth_ = 0;
            quoted_ = false;
            takeOther(c);
        }
        return;
    case State::string:
        if (takeString(c, text_)) {
            parts.push_back({key_, std::move(text_), true});
            text_.clear();
            state_ = State::comma;
        }
        return;
    case State::other: return takeOther(c);
    case State::complete:
    case State::broken: return;
    }
}

bool ArgumentStream::takeString(char c, std::string& into) {
    if (afterBackslash_ || hexDigits_ > 0) {
        takeEscape(c, into);
        return false;
    }
    if (c == '\\') {
        afterBackslash_ = true;
        return false;
    }
    if (highSurrogate_ != 0) {
        appendPoint(into, replacement);
        highSurrogate_ = 0;
    }
    if (c == '"')
        return true;
    if (c != '\0')
        into += c;
    return false;
}

void ArgumentStream::takeEscape(char c, std::string& into) {
    if (hexDigits_ > 0) {
        const unsigned digit = c >= '0' && c <= '9' ? static_cast<unsigned>(c - '0')
            : c >= 'a' && c <= 'f'                  ? static_cast<unsigned>(c - 'a') + 10
            : c >= 'A' && c <= 'F'                  ? static_cast<unsigned>(c - 'A') + 10
                                                    : 16;
        if (digit == 16) {
            state_ = State::broken;
            return;
        }
        unit_ = unit_ * 16 + digit;
        if (--hexDigits_ == 0)
            takeUnit(into);
        return;
    }
    afterBackslash_ = false;
    if (c == 'u') {
        hexDigits_ = 4;
        unit_ = 0;
        return;
    }
    if (highSurrogate_ != 0) {
        appendPoint(into, replacement);
        highSurrogate_ = 0;
    }
    constexpr std::string_view written = "\"\\/bfnrt";
    constexpr std::string_view meant = "\"\\/\b\f\n\r\t";
    if (const auto at = written.find(c); at != std::string_view::npos)
        into += meant[at];
    else
        state_ = State::broken;
}

void ArgumentStream::takeUnit(std::string& into) {
    const bool isLow = unit_ >= 0xDC00U && unit_ < 0xE000U;
    if (highSurrogate_ != 0) {
        const unsigned high = highSurrogate_;
        highSurrogate_ = 0;
        if (isLow)
            return appendPoint(into, 0x10000U + ((high - 0xD800U) << 10U) + (unit_ - 0xDC00U));
        appendPoint(into, replacement);
    }
    if (unit_ >= 0xD800U && unit_ < 0xDC00U)
        highSurrogate_ = unit_;
    else
        appendPoint(into, isLow ? replacement : unit_);
}

void ArgumentStream::takeOther(char c) {
    if (quoted_) {
        if (afterBackslash_)
            afterBackslash_ = false;
        else if (c == '\\')
            afterBackslash_ = true;
        else if (c == '"')
            quoted_ = false;
        return;
    }
    if (c == '"') {
        quoted_ = true;
    } else if (c == '{' || c == '[') {
        ++depth_;
    } else if (c == '}' || c == ']') {
        if (depth_ == 0)
            state_ = c == '}' ? State::complete : State::broken;
        else
            --depth_;
    } else if (c == ',' && depth_ == 0) {
        state_ = State::comma;
    }
}

}
