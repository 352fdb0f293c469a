#include "Http/Message.h"

#include <string_view>

namespace korvi::service {

namespace {

int hexValue(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

std::string decoded(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size() && hexValue(text[i + 1]) >= 0 && hexValue(text[i + 2]) >= 0) {
            result += static_cast<char>(hexValue(text[i + 1]) * 16 + hexValue(text[i + 2]));
            i += 2;
        } else {
            result += text[i];
        }
    }
    return result;
}

}

void setTarget(Request& request, const std::string& target) {
    const std::string_view whole(target);
    const auto mark = whole.find('?');
    request.path = decoded(whole.substr(0, mark));
    if (mark == std::string_view::npos)
        return;
    auto rest = whole.substr(mark + 1);
    while (!rest.empty()) {
        const auto pair = rest.substr(0, rest.find('&'));
        const auto equals = pair.find('=');
        request.query.emplace_back(decoded(pair.substr(0, equals)),
            equals == std::string_view::npos ? std::string() : decoded(pair.substr(equals + 1)));
        rest.remove_prefix(std::min(rest.size(), pair.size() + 1));
    }
}

}
