#pragma once

#include "Process/HeadlessTerminal.h"
#include "Process/RunLoop.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace termcore::test {

/// The size of every program's screen here.
constexpr int programCols = 80;
constexpr int programRows = 24;

/// A program in a terminal, and what it shows.
class ProgramScreen {
public:
    virtual ~ProgramScreen() = default;
    /// The rows, without blanks at their ends and empty rows at the end.
    virtual std::string text() = 0;
    virtual void type(std::string_view keys) = 0;
    /// Lets the program run for a few hundredths of a second.
    virtual void pause() = 0;

    /// The screen once it has held still and `isReady`; after half a minute as it is.
    std::string settled(const std::function<bool(const std::string&)>& isReady);
    std::string settled(std::string_view wanted) {
        return settled([&](const std::string& now) { return now.find(wanted) != std::string::npos; });
    }
};

/// On the engine.
class EngineScreen final : public ProgramScreen {
public:
    /// `command` is for bash.
    explicit EngineScreen(const std::string& command);
    std::string text() override;
    void type(std::string_view keys) override { headless.send(keys); }
    void pause() override;

private:
    RunLoop loop;
    HeadlessTerminal headless;
};

/// Under tmux, through its capture of the pane.
class TmuxScreen final : public ProgramScreen {
public:
    /// `folder` takes a script to start.
    TmuxScreen(const std::string& command, const std::filesystem::path& folder);
    ~TmuxScreen() override;
    std::string text() override;
    void type(std::string_view keys) override;
    void pause() override;

    static bool isInstalled();

private:
    std::string tmux; // the command and its socket
};

/// A folder that goes with its contents.
class WorkFolder {
public:
    WorkFolder();
    ~WorkFolder();
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;
    const std::filesystem::path path;
};

int runShell(const std::string& command);
inline bool hasProgram(const std::string& name) {
    return runShell("command -v " + name + " >/dev/null") == 0;
}

}
