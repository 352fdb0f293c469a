#pragma once

#include "Files/FileStore.h"
#include "Providers/Provider.h"

#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace korvi::service {

/// Files that a demonstration makes, in the chat that it answers in. What it returns are stored addresses.
class DemoFiles {
public:
    DemoFiles(FileStore& files, std::string userId, long long chatId)
        : files_(files)
        , userId_(std::move(userId))
        , chatId_(chatId) {}

    std::string picture(const std::string& words, unsigned width, unsigned height, const std::string& name);
    std::string keep(std::string_view bytes, const std::string& name);

private:
    FileStore& files_;
    std::string userId_;
    long long chatId_;
};

/// Text or reasoning, said in small parts.
struct DemoSpeech {
    PieceKind kind = PieceKind::text;
    std::string text;
};
/// A tool's step. `data` is made when its time has come: it may need files.
struct DemoTool {
    ProviderTool::Phase phase = ProviderTool::Phase::start;
    std::string tool;
    std::function<nlohmann::json(DemoFiles&)> data;
};
/// Nothing for that many steps.
struct DemoPause {
    int steps = 0;
};
struct DemoFailure {
    std::string message;
};
using DemoStep = std::variant<DemoSpeech, DemoTool, DemoPause, DemoFailure>;

struct DemoScript {
    std::vector<DemoStep> steps;
    /// How many times slower than usual the answer comes.
    int slowness = 1;
};

/// What the demonstration does with a question. Deterministic: a word in it decides.
DemoScript demoScript(std::string_view question);

}
