#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace korvi::service {

enum class ProviderKind { demo, openai };

/// What the command line and the environment say.
struct Options {
    bool help = false;
    bool version = false;
    std::string host = "127.0.0.1";
    /// 0: a free port.
    std::uint16_t port = 0;
    std::filesystem::path data;
    ProviderKind provider = ProviderKind::demo;
    std::chrono::milliseconds demoDelay{15};
    std::string openaiUrl = "http://127.0.0.1:11434/v1";
    /// Never on the command line, where every user of the machine could read it.
    std::string openaiKey;
    std::string model;
    std::map<std::string, std::string> modelForMode;
    /// The model names new chats, too.
    bool modelTitles = true;
    /// The model may use tools.
    bool modelTools = true;
    bool allowPlainHttp = false;
    /// Where clients reach the service, if not at its own address: "https://example.com", without a trailing slash.
    std::string publicUrl;
    /// An endpoint that searches the web; empty: models are not offered a search.
    std::string searchUrl;
    /// The model that draws; empty: nobody does.
    std::string imageModel;
    /// Stand-in accounts of other providers may sign in; only at a loopback address.
    bool devProviders = false;
    std::chrono::seconds modelIdle{180};

    bool isLoopback() const { return host.starts_with("127.") || host == "::1" || host == "localhost"; }
};

/// A command line that cannot be obeyed; `what()` is for the user.
class OptionsError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

Options parseOptions(const std::vector<std::string>& arguments);
std::string helpText();

}
