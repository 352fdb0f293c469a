#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace korvi::service {

/// JSON from outside. Absent if it is malformed, not UTF-8, or nested so deeply that walking it would need a deep stack.
std::optional<nlohmann::json> parseJson(std::string_view text);

/// Never throws: bytes that are not UTF-8 become replacement characters.
std::string dumpJson(const nlohmann::json& value);

/// The string under `key`, or absent if there is none.
std::optional<std::string> stringAt(const nlohmann::json& object, const char* key);

}
