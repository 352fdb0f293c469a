#pragma once

#include "Core/Asio.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace korvi::service {

struct ChildCommand {
    /// Absolute. Never a shell.
    std::filesystem::path program;
    std::vector<std::string> arguments;
    /// The whole environment, "NAME=value".
    std::vector<std::string> environment;
    /// Where it runs; it may write there.
    std::filesystem::path folder;
    /// What it may read besides programs, libraries and their data.
    std::vector<std::filesystem::path> readable;
    /// What the program says on either stream; empty: nobody hears it.
    std::filesystem::path output;
    std::chrono::seconds time{30};
    std::uint64_t memoryBytes = std::uint64_t{1} << 30U;
    std::uint64_t fileBytes = std::uint64_t{64} << 20U;
};

enum class ChildEnd { succeeded, failed, timedOut, notStarted };

/// Runs a program on outside input: bounded in time, memory and size of files, without descriptors of ours and, where the
/// system allows it, without a network and without sight of anybody's files (Confinement). It is killed with its group
/// when the handle goes; `onEnd` is not called then.
std::shared_ptr<void> runChild(asio::io_context& io, const ChildCommand& command, std::function<void(ChildEnd)> onEnd);

/// An absolute path to the program of that name on PATH.
std::optional<std::filesystem::path> findProgram(const std::string& name);

/// A folder of our own that is gone with the object.
class ScratchFolder {
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

}
