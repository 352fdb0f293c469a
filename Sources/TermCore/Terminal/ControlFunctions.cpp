#include "Terminal/ControlFunctions.h"

#include "Terminal/CursorCommands.h"
#include "Terminal/EraseCommands.h"
#include "Terminal/GraphicRendition.h"
#include "Terminal/ModeCommands.h"
#include "Terminal/RectangleCommands.h"
#include "Terminal/ReportCommands.h"
#include "Terminal/ScrollCommands.h"
#include "Terminal/TerminalCommands.h"
#include "Terminal/WindowCommands.h"

#include <array>
#include <cstddef>

namespace termcore::controlfunctions {
namespace {

using enum ControlFunction::Introducer;
constexpr char any = ControlFunction::any;
constexpr char none = 0;

// Names as in ECMA-48, DEC STD 070 and xterm's control sequences.
constexpr ControlFunction table[] = {
    {control, none, none, '\x07', "BEL", commands::bell},
    {control, none, none, '\x08', "BS", commands::backspace},
    {control, none, none, '\x09', "HT", commands::horizontalTab},
    {control, none, none, '\x0A', "LF", commands::lineFeed},
    {control, none, none, '\x0B', "VT", commands::lineFeed},
    {control, none, none, '\x0C', "FF", commands::lineFeed},
    {control, none, none, '\x0D', "CR", commands::carriageReturn},
    {control, none, none, '\x0E', "SO", commands::shiftOut},
    {control, none, none, '\x0F', "SI", commands::shiftIn},
    {control, none, none, '\x84', "IND", commands::index},
    {control, none, none, '\x85', "NEL", commands::nextLine},
    {control, none, none, '\x88', "HTS", commands::tabSet},

    {esc, none, none, '6', "DECBI", commands::backIndex},
    {esc, none, none, '7', "DECSC", commands::saveCursor},
    {esc, none, none, '8', "DECRC", commands::restoreCursor},
    {esc, none, none, '9', "DECFI", commands::forwardIndex},
    {esc, none, none, '=', "DECKPAM", commands::applicationKeypad},
    {esc, none, none, '>', "DECKPNM", commands::numericKeypad},
    {esc, none, none, 'D', "IND", commands::index},
    {esc, none, none, 'E', "NEL", commands::nextLine},
    {esc, none, none, 'H', "HTS", commands::tabSet},
    {esc, none, none, 'M', "RI", commands::reverseIndex},
    {esc, none, none, '\\', "ST", commands::nothing},
    {esc, none, none, 'c', "RIS", commands::reset},
    {esc, none, none, 'n', "LS2", commands::lockingShift2},
    {esc, none, none, '}', "LS2R", commands::lockingShift2},
    {esc, none, none, 'o', "LS3", commands::lockingShift3},
    {esc, none, none, '|', "LS3R", commands::lockingShift3},
    {esc, none, none, '~', "LS1R", commands::shiftOut},
    {esc, none, ' ', 'F', "S7C1T", commands::sevenBitControls},
    {esc, none, ' ', 'G', "S8C1T", commands::eightBitControls},
    {esc, none, '#', '3', "DECDHL top", commands::doubleHeightTop},
    {esc, none, '#', '4', "DECDHL bottom", commands::doubleHeightBottom},
    {esc, none, '#', '5', "DECSWL", commands::singleWidth},
    {esc, none, '#', '6', "DECDWL", commands::doubleWidth},
    {esc, none, '#', '8', "DECALN", commands::screenAlignmentPattern},
    {esc, none, '%', 'G', "DOCS UTF-8", commands::selectDefaultCoding},
    {esc, none, '%', '@', "DOCS default", commands::selectDefaultCoding},
    {esc, none, '(', any, "SCS G0", commands::designateCharset},
    {esc, none, ')', any, "SCS G1", commands::designateCharset},
    {esc, none, '*', any, "SCS G2", commands::designateCharset},
    {esc, none, '+', any, "SCS G3", commands::designateCharset},
    {esc, none, '-', any, "SCS G0, 96", commands::designateCharset},
    {esc, none, '.', any, "SCS G1, 96", commands::designateCharset},
    {esc, none, '/', any, "SCS G2, 96", commands::designateCharset},

    {csi, any, any, '@', "ICH", commands::insertChars},
    {csi, any, any, 'A', "CUU", commands::cursorUp},
    {csi, any, any, 'B', "CUD", commands::cursorDown},
    {csi, any, any, 'C', "CUF", commands::cursorForward},
    {csi, any, any, 'D', "CUB", commands::cursorBackward},
    {csi, any, any, 'E', "CNL", commands::cursorNextLine},
    {csi, any, any, 'F', "CPL", commands::cursorPrecedingLine},
    {csi, any, any, 'G', "CHA", commands::cursorCharAbsolute},
    {csi, any, any, 'H', "CUP", commands::cursorPosition},
    {csi, any, any, 'I', "CHT", commands::cursorForwardTab},
    {csi, any, any, 'J', "ED", commands::eraseInDisplay},
    {csi, any, any, 'K', "EL", commands::eraseInLine},
    {csi, any, any, 'L', "IL", commands::insertLines},
    {csi, any, any, 'M', "DL", commands::deleteLines},
    {csi, any, any, 'P', "DCH", commands::deleteChars},
    {csi, any, any, 'S', "SU", commands::scrollUp},
    {csi, none, none, 'T', "SD", commands::scrollDown},
    {csi, '>', none, 'T', "XTRMTITLE", commands::resetTitleModes},
    {csi, any, any, 'X', "ECH", commands::eraseChars},
    {csi, any, any, 'Z', "CBT", commands::cursorBackwardTab},
    {csi, any, any, '`', "HPA", commands::charPosAbsolute},
    {csi, any, any, 'a', "HPR", commands::hPositionRelative},
    {csi, any, any, 'b', "REP", commands::repeatPrecedingCharacter},
    {csi, any, any, 'c', "DA", commands::sendDeviceAttributes},
    {csi, any, any, 'd', "VPA", commands::linePosAbsolute},
    {csi, any, any, 'e', "VPR", commands::vPositionRelative},
    {csi, any, any, 'f', "HVP", commands::hvPosition},
    {csi, any, any, 'g', "TBC", commands::tabClear},
    {csi, any, any, 'h', "SM", commands::setMode},
    {csi, any, any, 'l', "RM", commands::resetMode},
    {csi, any, any, 'm', "SGR", commands::selectGraphicRendition},
    {csi, any, any, 'n', "DSR", commands::deviceStatus},
    {csi, none, '!', 'p', "DECSTR", commands::softReset},
    {csi, none, '"', 'p', "DECSCL", commands::setConformanceLevel},
    {csi, '?', '$', 'p', "DECRQM", commands::requestMode},
    {csi, none, '$', 'p', "DECRQM", commands::requestMode},
    {csi, none, ' ', 'q', "DECSCUSR", commands::setCursorStyle},
    {csi, none, none, 'r', "DECSTBM", commands::setScrollRegion},
    {csi, none, none, 's', "DECSLRM", commands::setMarginsOrSaveCursor},
    {csi, none, none, 't', "XTWINOPS", commands::windowOptions},
    {csi, '>', none, 't', "XTSMTITLE", commands::setTitleModes},
    {csi, none, none, 'u', "SCORC", commands::restoreCursor},
    {csi, none, '$', 'v', "DECCRA", commands::copyRectangularArea},
    {csi, none, '$', 'x', "DECFRA", commands::fillRectangularArea},
    {csi, none, '*', 'y', "DECRQCRA", commands::requestChecksum},
    {csi, none, '\'', 'z', "DECELR", commands::enableLocatorReporting},
    {csi, none, '$', 'z', "DECERA", commands::eraseRectangularArea},
    {csi, none, '$', '{', "DECSERA", commands::selectiveEraseRectangularArea},
    {csi, none, '\'', '}', "DECIC", commands::insertColumns},
    {csi, none, '\'', '~', "DECDC", commands::deleteColumns},
};

using Index = std::array<ControlHandler, 256>;

/// Handlers of functions without prefix and intermediate, by final byte.
constexpr Index plainIndex(ControlFunction::Introducer introducer) {
    Index index{};
    for (const ControlFunction& row : table) {
        if (row.introducer != introducer || row.final == any || !row.matches({}, static_cast<std::uint8_t>(row.final)))
            continue;
        ControlHandler& entry = index[static_cast<std::uint8_t>(row.final)];
        if (entry == nullptr)
            entry = row.handler;
    }
    return index;
}

constexpr Index controls = plainIndex(control);
constexpr Index escapes = plainIndex(esc);
constexpr Index sequences = plainIndex(csi);

ControlHandler search(ControlFunction::Introducer introducer, std::string_view collect, std::uint8_t final) {
    for (const ControlFunction& row : table) {
        if (row.introducer == introducer && row.matches(collect, final))
            return row.handler;
    }
    return nullptr;
}

}

std::span<const ControlFunction> all() {
    return table;
}

ControlHandler findControl(std::uint8_t code) {
    return controls[code];
}

ControlHandler findEscape(std::string_view collect, std::uint8_t final) {
    return collect.empty() ? escapes[final] : search(esc, collect, final);
}

ControlHandler findSequence(std::string_view collect, std::uint8_t final) {
    return collect.empty() ? sequences[final] : search(csi, collect, final);
}

}
