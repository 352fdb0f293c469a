// The terminal engine beside libvterm's bare state parser. --engine NAME runs the engine alone, once: for profilers,
// and with `valgrind --tool=callgrind` for instructions per byte.
#include "AllocationCounter.h"
#include "Terminal/Terminal.h"
#include "Workloads.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <malloc.h>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <time.h>
#include <vector>
#include <vterm.h>

namespace {

/// Of this thread alone: what else the machine does must not count.
double cpuSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

constexpr std::size_t chunk = 65536;
constexpr int scrollback = 10000;

struct Host final : termcore::TerminalDelegate {
    std::size_t replies = 0;
    void send(termcore::Terminal&, Bytes data) override { replies += data.size(); }
    std::pair<termcore::Color, termcore::Color> getColors(termcore::Terminal& source) override {
        return {source.foregroundColor, source.backgroundColor};
    }
};

termcore::TerminalOptions options(int historyLines) {
    termcore::TerminalOptions result;
    result.cols = bench::cols;
    result.rows = bench::rows;
    result.scrollback = historyLines;
    return result;
}

template <typename Feed>
double megabytesPerSecond(std::string_view bytes, Feed feed) {
    const double start = cpuSeconds();
    for (std::string_view rest = bytes; !rest.empty();) {
        const std::string_view piece = rest.substr(0, chunk);
        feed(piece);
        rest.remove_prefix(piece.size());
    }
    return static_cast<double>(bytes.size()) / 1e6 / (cpuSeconds() - start);
}

double measureEngine(std::string_view bytes) {
    Host host;
    termcore::Terminal terminal(&host, options(scrollback));
    return megabytesPerSecond(bytes, [&](std::string_view piece) { terminal.feed(piece); });
}

double measureLibvterm(std::string_view bytes) {
    const std::unique_ptr<VTerm, void (*)(VTerm*)> term(vterm_new(bench::rows, bench::cols), vterm_free);
    vterm_set_utf8(term.get(), 1);
    vterm_state_reset(vterm_obtain_state(term.get()), 1);
    return megabytesPerSecond(
        bytes, [&](std::string_view piece) { vterm_input_write(term.get(), piece.data(), piece.size()); });
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

bool compare(const std::vector<bench::Workload>& all, int runs) {
    bool isGood = true;
    std::printf("%-24s %10s %10s %8s %6s\n", "MB/s of CPU time, 200x50", "TermCore", "libvterm", "times", "goal");
    for (const bench::Workload& work : all) {
        std::vector<double> ours;
        std::vector<double> theirs;
        for (int i = 0; i < runs; ++i) {
            ours.push_back(measureEngine(work.bytes));
            theirs.push_back(measureLibvterm(work.bytes));
        }
        const double times = median(ours) / median(theirs);
        isGood = isGood && times >= work.goal;
        std::printf("%-24s %10.0f %10.0f %8.1f %6.1f%s\n", work.name.c_str(), median(ours), median(theirs), times,
            work.goal, times >= work.goal ? "" : "  MISSED");
    }
    return isGood;
}

std::size_t residentBytes() {
    std::ifstream in("/proc/self/statm");
    std::size_t total = 0;
    std::size_t resident = 0;
    in >> total >> resident;
    return resident * 4096;
}

bool measureMemory(int length, double goal) {
    constexpr int count = 100000;
    const std::string text = bench::lines(count + bench::rows, length);
    malloc_trim(0);
    const std::size_t before = residentBytes();
    Host host;
    termcore::Terminal terminal(&host, options(count));
    terminal.feed(text);
    const double megabytes = static_cast<double>(residentBytes() - before) / 1e6;
    std::printf("memory of %d lines of %d: %.1f MB (goal %.0f)\n", count, length, megabytes, goal);
    return megabytes <= goal;
}

/// Lines that go through a full ring once it has taken what memory it needs.
bool countAllocations() {
    Host host;
    termcore::Terminal terminal(&host, options(1000));
    const std::string text = bench::lines(20000, 60);
    terminal.feed(text);
    const std::size_t before = bench::allocationCount();
    terminal.feed(text);
    const std::size_t made = bench::allocationCount() - before;
    std::printf("allocations for 20000 lines through a full ring: %zu\n", made);
    return made == 0;
}

}

int main(int argc, char** argv) {
    std::string only;
    std::string engineOnly;
    int runs = 7;
    std::size_t size = std::size_t{8} << 20;
    for (int i = 1; i < argc; ++i) {
        const std::string_view word = argv[i];
        if (word == "--quick") {
            runs = 3;
            size = std::size_t{2} << 20;
        } else if (word == "--only" && i + 1 < argc) {
            only = argv[++i];
        } else if (word == "--engine" && i + 1 < argc) {
            engineOnly = argv[++i];
        } else if (word == "--size" && i + 1 < argc) {
            size = std::strtoul(argv[++i], nullptr, 10) << 20;
        } else {
            std::fprintf(stderr, "usage: bench-term [--quick] [--only NAME] [--engine NAME] [--size MB]\n");
            return 2;
        }
    }
    if (!engineOnly.empty()) {
        for (const bench::Workload& work : bench::workloads(size, engineOnly)) {
            std::printf("%.0f MB/s, %zu bytes\n", measureEngine(work.bytes), work.bytes.size());
        }
        return 0;
    }
    bool isGood = compare(bench::workloads(size, only), runs);
    if (only.empty()) {
        isGood = measureMemory(29, 60) && isGood;
        isGood = measureMemory(200, 60) && isGood;
        isGood = countAllocations() && isGood;
    }
    return isGood ? 0 : 1;
}
