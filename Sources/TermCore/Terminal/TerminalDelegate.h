#pragma once

#include "Terminal/Color.h"
#include "Terminal/CursorStyle.h"
#include "Terminal/ImageSizeRequest.h"
#include "Terminal/ProgressReport.h"
#include "Terminal/WindowManipulationCommand.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace termcore {

class Terminal;

/// The host of a terminal. Called on the thread that feeds it, in the middle of parsing: an implementation must not feed
/// or resize `source` from inside a call, except where told.
class TerminalDelegate {
public:
    using Bytes = std::span<const std::uint8_t>;
    struct CellSize {
        int width = 0;
        int height = 0;
    };

    virtual ~TerminalDelegate() = default;

    virtual void showCursor(Terminal& /*source*/) {}
    virtual void hideCursor(Terminal& /*source*/) {}
    virtual void setTerminalTitle(Terminal& /*source*/, std::string_view /*title*/) {}
    virtual void setTerminalIconTitle(Terminal& /*source*/, std::string_view /*title*/) {}
    /// The bytes to send as the reply, or nothing: then the terminal answers reports itself.
    virtual std::optional<std::string> windowCommand(
        Terminal& /*source*/, const WindowManipulationCommand& /*command*/) {
        return std::nullopt;
    }
    /// DECCOLM changed the size.
    virtual void sizeChanged(Terminal& /*source*/) {}
    /// Reply bytes for the program.
    virtual void send(Terminal& source, Bytes data) = 0;
    virtual void scrolled(Terminal& /*source*/, int /*yDisp*/) {}
    virtual void linefeed(Terminal& /*source*/) {}
    virtual void bufferActivated(Terminal& /*source*/) {}
    /// When it begins, the host sees to it that `Terminal::expireSynchronizedOutput` is called at the deadline.
    virtual void synchronizedOutputChanged(Terminal& /*source*/, bool /*active*/) {}
    virtual void bell(Terminal& /*source*/) {}
    virtual void selectionChanged(Terminal& /*source*/) {}
    virtual bool isProcessTrusted(Terminal& /*source*/) { return true; }
    virtual std::optional<CellSize> cellSizeInPixels(Terminal& /*source*/) { return std::nullopt; }
    virtual void mouseModeChanged(Terminal& /*source*/) {}
    virtual void cursorStyleChanged(Terminal& /*source*/, CursorStyle /*newStyle*/) {}
    virtual void hostCurrentDirectoryUpdated(Terminal& /*source*/) {}
    virtual void hostCurrentDocumentUpdated(Terminal& /*source*/) {}
    /// Without an index all colours changed.
    virtual void colorChanged(Terminal& /*source*/, std::optional<int> /*index*/) {}
    virtual void setForegroundColor(Terminal& /*source*/, const Color& /*color*/) {}
    virtual void setBackgroundColor(Terminal& /*source*/, const Color& /*color*/) {}
    virtual void setCursorColor(Terminal& /*source*/, const std::optional<Color>& /*color*/) {}
    /// The foreground and background in force.
    virtual std::pair<Color, Color> getColors(Terminal& source) = 0;
    virtual void iTermContent(Terminal& /*source*/, Bytes /*content*/) {}
    virtual void clipboardCopy(Terminal& /*source*/, Bytes /*content*/) {}
    virtual void notify(Terminal& /*source*/, std::string_view /*title*/, std::string_view /*body*/) {}
    virtual void progressReport(Terminal& /*source*/, const ProgressReport& /*report*/) {}
    virtual void createImageFromBitmap(Terminal& /*source*/, Bytes /*rgba*/, int /*width*/, int /*height*/) {}
    virtual void createImage(Terminal& /*source*/, Bytes /*data*/, ImageSizeRequest /*width*/,
        ImageSizeRequest /*height*/, bool /*preserveAspectRatio*/) {}
};

}
