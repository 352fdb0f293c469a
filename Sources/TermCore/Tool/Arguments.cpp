#include "Tool/Arguments.h"

#include <charconv>
#include <string_view>

namespace termcore::tool {

const char* const usage =
    "usage: termcore feed FILE... [--size CxR] [--scrollback N] [--repeat N] [--dump screen|scrollback|json]\n"
    "       termcore run [--size CxR] [--scrollback N] [--dump screen|scrollback|json] [--timeout SECONDS]\n"
    "                    [--record FILE] [--debug-io] -- COMMAND...\n"
    "       termcore replay FILE [--dump screen|scrollback|json]\n"
    "\n"
    "feed    gives files to a terminal of 80x25 (or --size) and prints the rate, in MB/s, as its last line.\n"
    "run     runs a command on a pseudo-terminal; the terminal answers its reports. What comes on standard input,\n"
    "        unless that is a terminal, is typed in. Exits with the command's status, 128 + n after signal n, or 124\n"
    "        when the time is over.\n"
    "replay  gives a recording of run --record to a terminal, chunk by chunk.\n"
    "\n"
    "--dump prints the end: the text on the screen, that with the history before it, or the screen as JSON with\n"
    "attributes and cursor. --debug-io tells of each read and write on standard error.\n";

namespace {

int number(std::string_view text, int least) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < least)
        throw UsageError{"not a number of at least " + std::to_string(least) + ": " + std::string(text)};
    return value;
}

Arguments::Dump dumpNamed(std::string_view name) {
    if (name == "screen")
        return Arguments::Dump::screen;
    if (name == "scrollback")
        return Arguments::Dump::scrollback;
    if (name == "json")
        return Arguments::Dump::json;
    throw UsageError{"unknown dump: " + std::string(name)};
}

Arguments::Command commandNamed(std::string_view name) {
    if (name == "feed")
        return Arguments::Command::feed;
    if (name == "run")
        return Arguments::Command::run;
    if (name == "replay")
        return Arguments::Command::replay;
    throw UsageError{"unknown command: " + std::string(name)};
}

}

Arguments Arguments::parse(const std::vector<std::string>& words) {
    Arguments result;
    if (words.empty())
        throw UsageError{"no command given"};
    for (const std::string& word : words) {
        if (word == "--")
            break;
        if (word == "--help" || word == "-h")
            return result;
    }
    result.command = commandNamed(words[0]);
    for (std::size_t i = 1; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (word == "--") {
            result.operands.insert(
                result.operands.end(), words.begin() + static_cast<std::ptrdiff_t>(i) + 1, words.end());
            break;
        }
        if (!word.starts_with("--")) {
            result.operands.push_back(word);
            continue;
        }
        if (word == "--debug-io") {
            result.debugsIO = true;
            continue;
        }
        if (i + 1 == words.size())
            throw UsageError{"missing value: " + word};
        const std::string& value = words[++i];
        if (word == "--size") {
            const std::size_t cross = value.find('x');
            if (cross == std::string::npos)
                throw UsageError{"not a size: " + value};
            result.options.cols = number(std::string_view(value).substr(0, cross), 2);
            result.options.rows = number(std::string_view(value).substr(cross + 1), 1);
        } else if (word == "--scrollback") {
            result.options.scrollback = number(value, 0);
        } else if (word == "--repeat") {
            result.repeat = number(value, 1);
        } else if (word == "--dump") {
            result.dump = dumpNamed(value);
        } else if (word == "--timeout") {
            result.timeout = std::chrono::seconds(number(value, 1));
        } else if (word == "--record") {
            result.recordTo = value;
        } else {
            throw UsageError{"unknown option: " + word};
        }
    }
    if (result.operands.empty())
        throw UsageError{result.command == Command::run ? "no command to run" : "no file given"};
    return result;
}

}
