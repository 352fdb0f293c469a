#pragma once

#include "Chat/Piece.h"

#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <variant>
#include <vector>

namespace korvi::service {

struct ProviderTurn {
    /// "user", "assistant", or "system" for what the service itself asks.
    std::string role;
    /// Parts as they came from the client: text, image_url, file_url.
    nlohmann::json content;
};

struct ProviderRequest {
    /// The chat's mode: the identifier by which the client chose a model.
    std::string mode;
    std::vector<ProviderTurn> history;
    /// Whose answer it is, and in which chat: where files that it makes belong. 0: it may make none and use no tools.
    std::string userId;
    long long chatId = 0;
};

struct ProviderDelta {
    PieceKind kind;
    std::string text;
};
/// A tool at work: a start, arguments as they come, signs of life, an end. Addresses of our files are in the stored form.
struct ProviderTool {
    enum class Phase { start, arguments, progress, end };
    Phase phase = Phase::start;
    /// "web_search", "generateImage", "video", "createDocument" or "artifact".
    std::string tool;
    /// The new arguments, or the result.
    nlohmann::json data = nlohmann::json::object();
};
struct ProviderFinished {};
struct ProviderFailed {
    /// Russian, says what to do.
    std::string message;
};
using ProviderEvent = std::variant<ProviderDelta, ProviderTool, ProviderFinished, ProviderFailed>;

/// Called on the service's thread, never from inside `Provider::start`. After ProviderFinished or ProviderFailed nothing
/// follows.
using ProviderSink = std::function<void(ProviderEvent)>;

/// One answer being produced. Destroying it stops the production; the sink is not called afterwards.
class ProviderStream {
public:
    ProviderStream() = default;
    ProviderStream(const ProviderStream&) = delete;
    ProviderStream& operator=(const ProviderStream&) = delete;
    virtual ~ProviderStream() = default;
};

class Provider {
public:
    virtual ~Provider() = default;
    virtual std::unique_ptr<ProviderStream> start(const ProviderRequest& request, ProviderSink sink) = 0;
};

}
