#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace korvi::service {

/// What the demonstration answers to a question.
struct DemoAnswer {
    std::string thinking;
    std::string text;
    /// Not empty: the answer fails with this message after its text.
    std::string error;
    /// How many times slower than usual the answer comes.
    int slowness = 1;
};

/// What stands before and after an answer that is to be told from all others.
struct DemoEcho {
    std::string head;
    std::string tail;
};
DemoEcho demoEcho(std::string_view question);

/// Deterministic: the first row of the table whose word stands in the question decides.
DemoAnswer demoAnswer(std::string_view question);

}
