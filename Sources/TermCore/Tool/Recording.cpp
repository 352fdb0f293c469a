#include "Tool/Recording.h"

#include <stdexcept>

namespace termcore::tool {
namespace {

constexpr std::size_t largestChunk = std::size_t{1} << 26;

}

Recording Recording::read(std::istream& in) {
    Recording recording;
    std::string word;
    int version = 0;
    char cross = 0;
    if (!(in >> word >> version >> recording.cols >> cross >> recording.rows) || word != "termcore-recording" ||
        version != 1 || cross != 'x')
        throw std::runtime_error("not a recording");
    std::int64_t milliseconds = 0;
    std::size_t length = 0;
    while (in >> milliseconds >> length) {
        if (length > largestChunk)
            throw std::runtime_error("a chunk is too long");
        in.get();
        Chunk chunk{std::chrono::milliseconds(milliseconds), std::vector<std::uint8_t>(length)};
        if (!in.read(reinterpret_cast<char*>(chunk.bytes.data()), static_cast<std::streamsize>(length)))
            throw std::runtime_error("the recording ends inside a chunk");
        recording.chunks.push_back(std::move(chunk));
    }
    return recording;
}

Recorder::Recorder(const std::string& path, int cols, int rows)
    : out(path, std::ios::binary) {
    out << "termcore-recording 1 " << cols << "x" << rows << "\n";
}

void Recorder::add(std::span<const std::uint8_t> bytes) {
    const auto at = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
    out << at.count() << " " << bytes.size() << "\n";
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    out << "\n";
    out.flush();
}

}
