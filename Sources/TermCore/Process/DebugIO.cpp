#include "Process/DebugIO.h"

#include <cstdio>
#include <system_error>

namespace termcore {

void DebugIO::read(std::size_t count) {
    if (!isOn())
        return;
    total += count;
    std::fprintf(stderr, "[READ] count=%zu total=%zu\n", count, totalRead());
}

void DebugIO::queued(int number, std::size_t count) const {
    if (isOn())
        std::fprintf(stderr, "[SEND-%d] count=%zu\n", number, count);
}

void DebugIO::completed(int number, int error) const {
    if (isOn())
        std::fprintf(
            stderr, "[SEND-%d] %s\n", number, error == 0 ? "written" : std::generic_category().message(error).c_str());
}

void DebugIO::logFailed(std::string_view path) {
    std::fprintf(stderr, "Can't write the log file %.*s\n", static_cast<int>(path.size()), path.data());
}

}
