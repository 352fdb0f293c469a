// A body that anybody may send: no crash, and the same file however the body is split.
#include "Core/Json.h"
#include "Http/MultipartParser.h"

#include <cstdlib>
#include <string>

using namespace korvi::service;

namespace {

struct Outcome {
    std::string name;
    std::string content;
    bool isComplete = false;
    bool hasFailed = false;

    bool operator==(const Outcome&) const = default;
};

Outcome parse(std::string_view body, std::size_t step) {
    Outcome outcome;
    MultipartParser parser("b", "file",
        {[&](const MultipartParser::Part& part) { outcome.name = safeFilename(part.filename); },
            [&](std::string_view bytes) {
                outcome.content += bytes;
                return true;
            }});
    for (std::size_t at = 0; at < body.size() && parser.feed(body.substr(at, step)); at += step) {
    }
    outcome.isComplete = parser.isComplete();
    outcome.hasFailed = parser.hasFailed();
    return outcome;
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view body(reinterpret_cast<const char*>(data), size);
    multipartBoundary(body);
    const Outcome whole = parse(body, size + 1);
    // Beyond the limit of a header, where it is noticed depends on how much has come.
    if (size < MultipartParser::maximumHeader && (parse(body, 1) != whole || parse(body, 7) != whole))
        std::abort();
    if (whole.name.find_first_of("/\\") != std::string::npos || whole.name.starts_with("."))
        std::abort();
    return 0;
}
