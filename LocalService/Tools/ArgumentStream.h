#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace korvi::service {

/// Reads the strings of a JSON object while it is still being written, split anywhere: what a model says in the arguments
/// of a tool's call can be shown as it comes. Members that are not strings are passed over.
class ArgumentStream {
public:
    struct Part {
        std::string key;
        /// More of the member's string, escapes resolved.
        std::string text;
        /// The string ends here.
        bool ends = false;

        bool operator==(const Part&) const = default;
    };

    std::vector<Part> feed(std::string_view bytes);
    /// The object's closing brace has come.
    bool isComplete() const { return state_ == State::complete; }
    /// What came is not a JSON object; nothing more is read.
    bool isBroken() const { return state_ == State::broken; }

private:
    enum class State { before, key, colon, value, string, other, comma, complete, broken };

    void take(char c, std::vector<Part>& parts);
    /// True if `c` ended the string.
    bool takeString(char c, std::string& into);
    void takeEscape(char c, std::string& into);
    void takeUnit(std::string& into);
    void takeOther(char c);

    State state_ = State::before;
    std::string key_;
    std::string text_;
    // Inside a string.
    bool afterBackslash_ = false;
    int hexDigits_ = 0;
    unsigned unit_ = 0;
    unsigned highSurrogate_ = 0;
    // Inside a value that is passed over.
    int depth_ = 0;
    bool quoted_ = false;
};

}
