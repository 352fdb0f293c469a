// The whole engine on any bytes, with resizes in between, and fed twice: once as it comes and once cut into pieces, which
// must lead to the same screen.
#include "Terminal/Terminal.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <vector>

namespace {

struct Host final : termcore::TerminalDelegate {
    void send(termcore::Terminal&, Bytes) override {}
    std::pair<termcore::Color, termcore::Color> getColors(termcore::Terminal& source) override {
        return {source.foregroundColor, source.backgroundColor};
    }
};

void require(bool condition) {
    if (!condition)
        std::abort();
}

void checkInvariants(const termcore::Terminal& terminal) {
    const termcore::Buffer& buffer = terminal.buffer();
    require(buffer.x() >= 0 && buffer.x() <= terminal.cols());
    require(buffer.y() >= 0 && buffer.y() < terminal.rows());
    require(buffer.lines.count() <= buffer.lines.maxLength());
    require(buffer.lines.count() == static_cast<std::size_t>(buffer.yBase + terminal.rows()));
    require(buffer.marginLeft >= 0 && buffer.marginLeft <= buffer.marginRight && buffer.marginRight < terminal.cols());
    require(buffer.scrollTop() <= buffer.scrollBottom() && buffer.scrollBottom() < terminal.rows());
}

/// Reads every cell there is, as a view would.
void readAll(const termcore::Terminal& terminal) {
    std::vector<termcore::Cell> scratch;
    const auto& lines = terminal.displayBuffer().lines;
    for (std::size_t row = 0; row < lines.count(); ++row) {
        for (const termcore::Cell& cell : lines.read(row, scratch)) {
            require(cell.width() <= 2);
            const termcore::CharData data = terminal.unfolded(cell);
            require(!terminal.character(data.code).empty());
        }
    }
}

/// C1 controls, EM and SUB in a string mean different things at the start of a piece and inside: such inputs are not cut.
bool mayBeCut(std::span<const std::uint8_t> bytes) {
    for (const std::uint8_t byte : bytes) {
        if (byte == 0x19 || byte == 0x1A || (byte >= 0x80 && byte <= 0x9F))
            return false;
    }
    return true;
}

void compare(const termcore::Terminal& a, const termcore::Terminal& b) {
    require(a.getCursorLocation() == b.getCursorLocation());
    require(a.buffer().yBase == b.buffer().yBase);
    std::vector<termcore::Cell> left;
    std::vector<termcore::Cell> right;
    for (int row = 0; row < a.rows(); ++row) {
        const auto one = a.getLine(row, left);
        const auto two = b.getLine(row, right);
        require(one.size() == two.size());
        for (std::size_t col = 0; col < one.size(); ++col)
            require(one[col].text == two[col].text);
    }
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 4)
        return 0;
    termcore::TerminalOptions options;
    options.cols = 2 + data[0] % 40;
    options.rows = 1 + data[1] % 12;
    options.scrollback = data[2] % 20;
    const std::size_t step = 1 + data[3] % 64;
    Host host;
    termcore::Terminal terminal(&host, options);
    termcore::Terminal piecewise(&host, options);
    const std::span<const std::uint8_t> bytes(data + 4, size - 4);
    const bool compares = mayBeCut(bytes);
    for (std::size_t at = 0; at < bytes.size();) {
        const std::size_t length = std::min(step * 4, bytes.size() - at);
        const auto piece = bytes.subspan(at, length);
        terminal.feed(piece);
        for (std::size_t i = 0; compares && i < piece.size(); i += step)
            piecewise.feed(piece.subspan(i, std::min(step, piece.size() - i)));
        at += length;
        if (piece[0] >= 0xF5) {
            const int cols = 1 + piece[0] % 11 * 5;
            const int rows = 1 + static_cast<int>(length % 13);
            terminal.resize(cols, rows);
            if (compares)
                piecewise.resize(cols, rows);
        }
        checkInvariants(terminal);
    }
    readAll(terminal);
    if (compares)
        compare(terminal, piecewise);
    return 0;
}
