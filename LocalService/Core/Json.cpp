#include "Core/Json.h"

namespace korvi::service {

using nlohmann::json;

namespace {

constexpr std::size_t maximumDepth = 64;

bool isTooDeep(std::string_view text) {
    std::size_t depth = 0;
    bool inString = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (inString) {
            if (c == '\\')
                ++i;
            else if (c == '"')
                inString = false;
        } else if (c == '"') {
            inString = true;
        } else if (c == '[' || c == '{') {
            if (++depth > maximumDepth)
                return true;
        } else if ((c == ']' || c == '}') && depth > 0) {
            --depth;
        }
    }
    return false;
}

}

std::optional<json> parseJson(std::string_view text) {
    if (isTooDeep(text))
        return std::nullopt;
    json value = json::parse(text, nullptr, false);
    if (value.is_discarded())
        return std::nullopt;
    return value;
}

std::string dumpJson(const json& value) {
    return value.dump(-1, ' ', false, json::error_handler_t::replace);
}

std::optional<std::string> stringAt(const json& object, const char* key) {
    if (!object.is_object())
        return std::nullopt;
    const auto found = object.find(key);
    if (found == object.end() || !found->is_string())
        return std::nullopt;
    return found->get<std::string>();
}

}
