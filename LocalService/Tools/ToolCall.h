#pragma once

#include "Tools/ArgumentStream.h"

#include <cstddef>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace korvi::service {

/// What a model wants done.
struct ToolCall {
    std::string id;
    std::string name;
    /// JSON, as the model wrote it.
    std::string arguments;
};

/// Puts calls together from the deltas of a stream: several at once, arguments in pieces. Servers differ in what they
/// repeat and leave out: a name or an identifier may come once or with each delta, an index never.
class ToolCallCollector {
public:
    static constexpr std::size_t maximumCalls = 16;

    struct Change {
        std::size_t call = 0;
        /// Of its arguments.
        std::string added;
    };

    /// The "tool_calls" of a delta; what is not in that form changes nothing.
    std::vector<Change> take(const nlohmann::json& deltas);
    const std::vector<ToolCall>& calls() const { return calls_; }

private:
    std::size_t callFor(const nlohmann::json& delta);

    std::vector<ToolCall> calls_;
    // The call that a server's index means now.
    std::map<long long, std::size_t> byIndex_;
};

}
