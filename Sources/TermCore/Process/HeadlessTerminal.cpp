#include "Process/HeadlessTerminal.h"

#include <utility>

namespace termcore {

HeadlessTerminal::HeadlessTerminal(DispatchQueue& queue, const TerminalOptions& options, EndHandler endHandler)
    : terminal(this, options)
    , process(this, queue)
    , onEnd(std::move(endHandler)) {}

void HeadlessTerminal::send(std::string_view text) {
    process.send({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

void HeadlessTerminal::send(Terminal&, Bytes data) {
    process.send(data);
}

std::pair<Color, Color> HeadlessTerminal::getColors(Terminal& source) {
    return {source.foregroundColor, source.backgroundColor};
}

void HeadlessTerminal::hostCurrentDirectoryUpdated(Terminal& source) {
    dir = source.hostCurrentDirectory;
}

void HeadlessTerminal::createImageFromBitmap(Terminal&, Bytes rgba, int width, int height) {
    images.push_back({{rgba.begin(), rgba.end()}, width, height});
}

void HeadlessTerminal::processTerminated(LocalProcess&, std::optional<int> exitCode) {
    if (onEnd)
        onEnd(exitCode);
}

void HeadlessTerminal::dataReceived(std::span<const std::uint8_t> slice) {
    if (onData)
        onData(slice);
    terminal.feed(slice);
}

winsize HeadlessTerminal::getWindowSize() {
    winsize size{};
    size.ws_row = static_cast<unsigned short>(terminal.rows());
    size.ws_col = static_cast<unsigned short>(terminal.cols());
    size.ws_xpixel = 16;
    size.ws_ypixel = 16;
    return size;
}

}
