#pragma once

#include "Core/Asio.h"
#include "Files/FileStore.h"
#include "Providers/CurlLoop.h"
#include "Providers/Provider.h"
#include "Tools/ToolCall.h"
#include "Tools/Typesetter.h"

#include <chrono>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace korvi::service {

struct ToolSettings {
    /// Of a SearXNG-compatible endpoint; empty: no search.
    std::string searchUrl;
    /// Of the endpoint's "/images/generations"; empty: no pictures.
    std::string imagesUrl;
    std::string imageModel;
    std::string key;
};

/// Whose answer needs a tool.
struct ToolOwner {
    std::string userId;
    long long chatId = 0;
};

struct ToolResult {
    /// What the model is told.
    std::string text;
    /// The client takes a failed picture for the end of the answer, so it had better be.
    bool endsAnswer = false;
};

/// A tool at work. Destroying it stops the work; nothing is told afterwards.
class ToolRun {
public:
    ToolRun() = default;
    ToolRun(const ToolRun&) = delete;
    ToolRun& operator=(const ToolRun&) = delete;
    virtual ~ToolRun() = default;
};

/// The tools that a model may use, except for artifacts, which are written while the model still speaks (ArtifactWriter).
class ToolBox {
public:
    ToolBox(asio::io_context& io, CurlLoop& curl, FileStore& files, Typesetter& typesetter, ToolSettings settings);

    /// For the request: those of them that can work here.
    nlohmann::json definitions() const;

    using Emit = std::function<void(ProviderTool)>;
    using Done = std::function<void(ToolResult)>;
    /// Neither function is called from inside run(); either may destroy the run.
    std::unique_ptr<ToolRun> run(const ToolCall& call, const ToolOwner& owner, Emit emit, Done done);

private:
    asio::io_context& io_;
    CurlLoop& curl_;
    FileStore& files_;
    Typesetter& typesetter_;
    ToolSettings settings_;
};

}
