#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace korvi::service {

struct CreateFrame {
    std::string mode;
    nlohmann::json content;
    std::optional<long long> projectId;
};
struct SendFrame {
    long long chatId = 0;
    nlohmann::json content;
};
struct AbortFrame {
    long long chatId = 0;
};
/// A frame that cannot be carried out, with the reason in Russian.
struct BadFrame {
    long long chatId = 0;
    std::string message;
};
using ClientFrame = std::variant<CreateFrame, SendFrame, AbortFrame, BadFrame>;

ClientFrame parseClientFrame(std::string_view text);

/// The name of a chat that begins with this message.
std::string titleFor(const nlohmann::json& content);

}
