#pragma once

#include "Providers/CurlLoop.h"
#include "Providers/Provider.h"
#include "Providers/SseParser.h"

#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

namespace korvi::service {

/// One request to a chat completions endpoint: bytes in, deltas out. Any of its functions may destroy it.
class OpenAiRound {
public:
    struct Handlers {
        std::function<void(ProviderDelta)> onDelta;
        /// The "tool_calls" of a delta, as they came.
        std::function<void(const nlohmann::json&)> onToolCalls;
        std::function<void()> onFinished;
        /// `refusesTools`: the endpoint does not want requests with tools.
        std::function<void(std::string message, bool refusesTools)> onFailed;
    };

    OpenAiRound(CurlLoop& curl, HttpPost post, std::string model, Handlers handlers);
    OpenAiRound(const OpenAiRound&) = delete;
    OpenAiRound& operator=(const OpenAiRound&) = delete;

private:
    void finish();
    void fail(const std::string& message);
    void receive(const std::string& bytes);
    void takeEvent(const std::string& data);
    void takeChoice(const nlohmann::json& event, const char* key);
    void end(const HttpOutcome& outcome);
    bool hasWholeAnswer() const { return !isStream_ && (hasText_ || hasCalls_); }
    bool refusesTools() const;
    std::string failureText(const HttpOutcome& outcome) const;

    std::string url_;
    std::string model_;
    std::chrono::seconds idle_;
    Handlers handlers_;
    bool concluded_ = false;
    SseParser parser_;
    std::string body_;
    std::string retryAfter_;
    long status_ = 0;
    bool isStream_ = false;
    bool isComplete_ = false;
    bool hasText_ = false;
    bool hasCalls_ = false;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
    // Last: destroyed first, so that nothing above is called once it is going.
    std::shared_ptr<void> transfer_;
};

}
