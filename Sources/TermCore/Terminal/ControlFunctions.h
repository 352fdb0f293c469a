#pragma once

#include "Parser/ControlSequence.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace termcore {

class Terminal;

using ControlHandler = void (*)(Terminal& terminal, const ControlSequence& sequence);

/// One row of the table of control functions.
struct ControlFunction {
    enum class Introducer : std::uint8_t { control, esc, csi };

    Introducer introducer;
    char prefix;       ///< private marker '<' to '?', 0 for none, or `any`
    char intermediate; ///< 0x20 to 0x2F, 0 for none, or `any`
    char final;        ///< the control code itself for C0 and C1; `any` for all
    std::string_view name;
    ControlHandler handler;

    static constexpr char any = '\x7F';

    constexpr bool matches(std::string_view collect, std::uint8_t finalByte) const {
        if (final != any && final != static_cast<char>(finalByte))
            return false;
        if (prefix == any)
            return true;
        const std::string_view expected[] = {
            {&prefix, prefix == 0 ? 0U : 1U}, {&intermediate, intermediate == 0 ? 0U : 1U}};
        return collect.size() == expected[0].size() + expected[1].size() && collect.starts_with(expected[0]) &&
            collect.ends_with(expected[1]);
    }
};

namespace controlfunctions {

/// All control functions the terminal carries out; where several rows match, the first holds.
std::span<const ControlFunction> all();

/// Null for what is unknown.
ControlHandler findControl(std::uint8_t code);
ControlHandler findEscape(std::string_view collect, std::uint8_t final);
ControlHandler findSequence(std::string_view collect, std::uint8_t final);

}

}
