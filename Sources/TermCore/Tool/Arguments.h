#pragma once

#include "Terminal/TerminalOptions.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace termcore::tool {

/// The command line of termcore.
struct Arguments {
    enum class Command { help, feed, run, replay };
    enum class Dump { none, screen, scrollback, json };

    Command command = Command::help;
    Dump dump = Dump::none;
    TerminalOptions options;
    int repeat = 1;
    std::optional<std::chrono::milliseconds> timeout;
    std::optional<std::string> recordTo;
    bool debugsIO = false;             ///< a line for each read and write of `run`
    std::vector<std::string> operands; ///< files, or the command and its arguments

    /// Throws `UsageError`.
    static Arguments parse(const std::vector<std::string>& words);
};

struct UsageError {
    std::string message;
};

extern const char* const usage;

}
