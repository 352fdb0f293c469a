#pragma once

#include "Core/Asio.h"
#include "Core/ChildProcess.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace korvi::service {

struct Typeset {
    std::string pdf;
    /// Empty if there is a PDF; Russian, for the user.
    std::string error;
};

/// Makes PDFs of LaTeX with whatever engine is installed. What it is given may be hostile: the engine runs without shell
/// escape, may read and write its own folder only, and is bounded in time and memory. Where the kernel cannot confine it,
/// only its own settings do, and an engine that has a language to program in is not used.
class Typesetter {
public:
    /// `time` for all passes of a document, of which there may be three: less than a client waits.
    explicit Typesetter(asio::io_context& io, std::chrono::seconds time = std::chrono::seconds(50));

    bool isAvailable() const { return !engines_.empty(); }
    /// A fragment without a document class is put into one. Dropping the handle stops it.
    std::shared_ptr<void> typeset(const std::string& source, std::function<void(Typeset)> onEnd);

private:
    struct Engine {
        std::string name;
        std::filesystem::path program;
        std::filesystem::path tree;
    };
    struct Run;
    const Engine& engineFor(const std::string& source) const;

    asio::io_context& io_;
    std::chrono::seconds time_;
    std::vector<Engine> engines_;
    std::shared_ptr<std::size_t> running_ = std::make_shared<std::size_t>(0);
};

}
