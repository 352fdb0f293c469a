// What a model writes as the arguments of a call: no crash, the same strings however they are split, and for an object of
// plain strings those of a whole parser.
#include "Core/Json.h"
#include "Tools/ArgumentStream.h"
#include "Tools/ToolCall.h"

#include <cstdlib>
#include <map>
#include <string>

using namespace korvi::service;

namespace {

std::map<std::string, std::string> read(std::string_view text, std::size_t step, bool& isComplete) {
    ArgumentStream stream;
    std::map<std::string, std::string> result;
    std::string open;
    for (std::size_t at = 0; at < text.size(); at += step) {
        for (const auto& part : stream.feed(text.substr(at, step))) {
            open += part.text;
            if (part.ends)
                result[part.key] = std::exchange(open, {});
        }
    }
    isComplete = stream.isComplete();
    return result;
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    bool isComplete = false;
    bool isCompleteBySteps = false;
    const auto whole = read(text, size + 1, isComplete);
    if (read(text, 1, isCompleteBySteps) != whole || isComplete != isCompleteBySteps)
        std::abort();
    const auto parsed = parseJson(text);
    if (parsed && parsed->is_object()) {
        if (!isComplete)
            std::abort();
        for (const auto& [key, value] : parsed->items()) {
            std::string name = key;
            std::erase(name, '\0');
            const auto found = whole.find(name);
            if (!value.is_string() || name != key)
                continue;
            std::string meant = value.get<std::string>();
            std::erase(meant, '\0');
            if (found == whole.end() || found->second != meant)
                std::abort();
        }
    }
    if (parsed) {
        ToolCallCollector collector;
        collector.take(*parsed);
        collector.take(*parsed);
        if (collector.calls().size() > ToolCallCollector::maximumCalls)
            std::abort();
    }
    return 0;
}
