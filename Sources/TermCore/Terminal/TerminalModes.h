#pragma once

#include <cstdint>

namespace termcore {

enum class MouseMode : std::uint8_t { off, x10, vt200, buttonEventTracking, anyEvent };
enum class MouseProtocolEncoding : std::uint8_t { x10, utf8, sgr, urxvt, sgrPixels };
enum class TerminalConformance : std::uint8_t { vt100, vt200, vt300, vt400, vt500 };

/// The modes that SM, RM, DECSET and DECRST switch, and the like.
struct TerminalModes {
    bool applicationCursor = false;
    bool applicationKeypad = false;
    bool originMode = false;
    bool wraparound = true;
    bool reverseWraparound = false;
    bool marginMode = false;
    bool insertMode = false;
    bool lineFeedMode = false;
    bool smoothScroll = false;
    bool cursorBlink = false;
    bool cursorHidden = false;
    bool allow80To132 = true;
    bool bracketedPasteMode = false;
    bool sendFocus = false;
    MouseMode mouseMode = MouseMode::off;
    MouseProtocolEncoding mouseProtocol = MouseProtocolEncoding::x10;
    TerminalConformance conformance = TerminalConformance::vt500;
    bool xtermTitleSetUtf = false;
    bool xtermTitleSetHex = false;
    bool xtermTitleQueryUtf = false;
    bool xtermTitleQueryHex = false;
};

}
