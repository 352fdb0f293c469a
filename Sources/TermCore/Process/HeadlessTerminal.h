#pragma once

#include "Process/LocalProcess.h"
#include "Terminal/Terminal.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace termcore {

/// A terminal and its child without a view.
class HeadlessTerminal : public TerminalDelegate, public LocalProcessDelegate {
public:
    struct Image {
        std::vector<std::uint8_t> bitmap;
        int width = 0;
        int height = 0;
    };
    using EndHandler = std::function<void(std::optional<int> exitCode)>;

    HeadlessTerminal(DispatchQueue& queue, const TerminalOptions& options, EndHandler onEnd);

    Terminal terminal;
    LocalProcess process;
    EndHandler onEnd;
    std::optional<std::string> dir; ///< the last host directory reported
    std::vector<Image> images;
    /// Sees each chunk before the terminal does; for recordings.
    std::function<void(std::span<const std::uint8_t>)> onData;

    void send(std::span<const std::uint8_t> data) { process.send(data); }
    void send(std::string_view text);
    void changeScrollback(std::optional<int> lines) { terminal.changeScrollback(lines); }

    void send(Terminal& source, Bytes data) override;
    std::pair<Color, Color> getColors(Terminal& source) override;
    void hostCurrentDirectoryUpdated(Terminal& source) override;
    void createImageFromBitmap(Terminal& source, Bytes rgba, int width, int height) override;

    void processTerminated(LocalProcess& source, std::optional<int> exitCode) override;
    void dataReceived(std::span<const std::uint8_t> slice) override;
    winsize getWindowSize() override;
};

}
