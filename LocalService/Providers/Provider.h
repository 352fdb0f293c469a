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
};

struct ProviderDelta {
    PieceKind kind;
    std::string text;
};
struct ProviderFinished {};
struct ProviderFailed {
    /// Russian, says what to do.
    std::string message;
};
using ProviderEvent = std::variant<ProviderDelta, ProviderFinished, ProviderFailed>;

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
