#include "Http/Message.h"

#include <algorithm>
#include <string_view>
#include <unistd.h>

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

std::vector<std::pair<std::string, std::string>> pairs(std::string_view text) {
    std::vector<std::pair<std::string, std::string>> result;
    while (!text.empty()) {
        const auto pair = text.substr(0, text.find('&'));
        const auto equals = pair.find('=');
        result.emplace_back(percentDecoded(pair.substr(0, equals)),
            equals == std::string_view::npos ? std::string() : percentDecoded(pair.substr(equals + 1)));
        text.remove_prefix(std::min(text.size(), pair.size() + 1));
    }
    return result;
}

}

OpenFile::~OpenFile() {
    if (descriptor_ >= 0)
        ::close(descriptor_);
}

std::string percentDecoded(std::string_view text) {
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

void setTarget(Request& request, const std::string& target) {
    const std::string_view whole(target);
    const auto mark = whole.find('?');
    request.path = percentDecoded(whole.substr(0, mark));
    if (mark != std::string_view::npos)
        request.query = pairs(whole.substr(mark + 1));
}

std::vector<std::pair<std::string, std::string>> formFields(const std::string& body) {
    std::string text = body;
    std::replace(text.begin(), text.end(), '+', ' ');
    return pairs(text);
}

std::string percentEncoded(const std::string& text) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    constexpr std::string_view plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (plain.find(c) != std::string_view::npos)
            result += c;
        else
            result += {'%', digits[byte >> 4U], digits[byte & 15U]};
    }
    return result;
}

}
