#pragma once

#include <optional>
#include <string>
#include <sys/ioctl.h>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace termcore {

/// The raw calls on pseudo-terminals. No state.
class PseudoTerminalHelpers {
public:
    struct Child {
        pid_t pid = 0;
        int masterDescriptor = -1; ///< non-blocking, closed on exec
    };

    /// Starts `path` with `argv` (the first is its name) on a pseudo-terminal of its own, as leader of its session and
    /// process group; the child exits with 127 when it can't be executed. Nothing when there can be no child.
    static std::optional<Child> fork(const std::string& andExec, const std::vector<std::string>& args,
        const std::vector<std::string>& env, const std::optional<std::string>& currentDirectory,
        const winsize& desiredWindowSize);
    /// The result of TIOCSWINSZ.
    static int setWinSize(int masterPtyDescriptor, const winsize& windowSize);
    /// The result of FIONREAD and the count.
    static std::pair<int, int> availableBytes(int fd);
};

}
