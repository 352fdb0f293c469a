#include "Terminal/RequestStatusString.h"

#include "Terminal/Terminal.h"

#include <algorithm>
#include <optional>

namespace termcore {
namespace {

std::string margins(int first, int last, char final) {
    return std::to_string(first + 1) + ";" + std::to_string(last + 1) + final;
}

struct Setting {
    std::string_view request;
    std::string (*payload)(const Terminal& terminal);
};

constexpr Setting settings[] = {
    {"\"q", [](const Terminal&) { return std::string("\"q"); }},
    {"\"p", [](const Terminal&) { return std::string("65;1\"p"); }},
    {"r", [](const Terminal& t) { return margins(t.buffer().scrollTop(), t.buffer().scrollBottom(), 'r'); }},
    {"m", [](const Terminal& t) { return t.curAttr().toSgr(); }},
    {"s", [](const Terminal& t) { return margins(t.buffer().marginLeft, t.buffer().marginRight, 's'); }},
    {" q", [](const Terminal&) { return std::string("2 q"); }},
};

}

void RequestStatusString::hook(std::span<const std::uint8_t>, std::span<const std::int64_t>, std::uint8_t) {
    request.clear();
}

void RequestStatusString::put(std::span<const std::uint8_t> data) {
    // Every known request is short; what is longer is unknown whatever else it says.
    const std::size_t count = std::min(data.size(), longestRequest - std::min(request.size(), longestRequest));
    request.append(reinterpret_cast<const char*>(data.data()), count);
}

void RequestStatusString::unhook() {
    std::string reply(terminal.cc.DCS());
    const auto setting = std::find_if(
        std::begin(settings), std::end(settings), [&](const Setting& each) { return each.request == request; });
    if (setting != std::end(settings)) {
        reply += "1$r" + setting->payload(terminal);
    } else {
        terminal.log("Unknown DECRQSS request: " + request);
        reply += "0$r";
    }
    terminal.sendResponse(reply + std::string(terminal.cc.ST()));
}

}
