#pragma once

#include <chrono>
#include <cstdint>
#include <fstream>
#include <istream>
#include <span>
#include <string>
#include <vector>

namespace termcore::tool {

/// A recorded session: a line "termcore-recording 1 COLSxROWS", then for each chunk a line "MILLISECONDS LENGTH", the
/// bytes and a newline.
struct Recording {
    struct Chunk {
        std::chrono::milliseconds at{0};
        std::vector<std::uint8_t> bytes;
    };

    int cols = 0;
    int rows = 0;
    std::vector<Chunk> chunks;

    /// Throws `std::runtime_error` for what is no recording.
    static Recording read(std::istream& in);
};

/// Writes a recording as the session goes on.
class Recorder {
public:
    Recorder(const std::string& path, int cols, int rows);
    void add(std::span<const std::uint8_t> bytes);

private:
    std::ofstream out;
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

}
