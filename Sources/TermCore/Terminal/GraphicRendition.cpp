#include "Terminal/GraphicRendition.h"

#include "Terminal/Terminal.h"

#include <algorithm>
#include <array>

namespace termcore::commands {
namespace {

using Color = Attribute::Color;

enum class Change : std::uint8_t {
    none,
    reset,
    styleOn,
    styleOff,
    underline,
    underlineOff,
    doubleUnderline,
    foreground,
    background,
    extendedForeground,
    extendedBackground,
    extendedUnderline,
    defaultForeground,
    defaultBackground,
    defaultUnderline,
};

struct Rendition {
    Change change = Change::none;
    std::uint8_t value = 0; ///< style bits or palette index
};

/// By parameter.
constexpr auto renditions = [] {
    std::array<Rendition, 108> table{};
    const auto style = [&](std::size_t at, Change change, CharacterStyle bits) {
        table[at] = {change, static_cast<std::uint8_t>(bits)};
    };
    const auto palette = [&](std::size_t at, Change change, std::uint8_t first) {
        for (std::uint8_t i = 0; i < 8; ++i)
            table[at + i] = {change, static_cast<std::uint8_t>(first + i)};
    };
    table[0] = {Change::reset, 0};
    style(1, Change::styleOn, CharacterStyle::bold);
    style(2, Change::styleOn, CharacterStyle::dim);
    style(3, Change::styleOn, CharacterStyle::italic);
    table[4] = {Change::underline, 0};
    style(5, Change::styleOn, CharacterStyle::blink);
    style(7, Change::styleOn, CharacterStyle::inverse);
    style(8, Change::styleOn, CharacterStyle::invisible);
    style(9, Change::styleOn, CharacterStyle::crossedOut);
    table[21] = {Change::doubleUnderline, 0};
    style(22, Change::styleOff, CharacterStyle::bold | CharacterStyle::dim);
    style(23, Change::styleOff, CharacterStyle::italic);
    table[24] = {Change::underlineOff, 0};
    style(25, Change::styleOff, CharacterStyle::blink);
    style(27, Change::styleOff, CharacterStyle::inverse);
    style(28, Change::styleOff, CharacterStyle::invisible);
    style(29, Change::styleOff, CharacterStyle::crossedOut);
    palette(30, Change::foreground, 0);
    table[38] = {Change::extendedForeground, 0};
    table[39] = {Change::defaultForeground, 0};
    palette(40, Change::background, 0);
    table[48] = {Change::extendedBackground, 0};
    table[49] = {Change::defaultBackground, 0};
    table[58] = {Change::extendedUnderline, 0};
    table[59] = {Change::defaultUnderline, 0};
    palette(90, Change::foreground, 8);
    palette(100, Change::background, 8);
    return table;
}();

void setUnderline(Attribute& attribute, UnderlineStyle style) {
    attribute.underlineStyle = style;
    if (style == UnderlineStyle::none)
        attribute.style &= ~CharacterStyle::underline;
    else
        attribute.style |= CharacterStyle::underline;
}

std::uint8_t component(std::int64_t value) {
    return static_cast<std::uint8_t>(std::min<std::int64_t>(value, 255));
}

ExtendedColor semicolonColor(std::size_t start, std::span<const std::int64_t> parameters) {
    const std::size_t left = parameters.size() - start;
    if (parameters[start] == 5) {
        if (left < 2)
            return {std::nullopt, 1};
        return {Color::ansi256(component(parameters[start + 1])), 2};
    }
    if (parameters[start] == 2 && left >= 4) {
        const auto rgb = parameters.subspan(start + 1);
        return {Color::trueColor(component(rgb[0]), component(rgb[1]), component(rgb[2])), 4};
    }
    return {std::nullopt, 1};
}

ExtendedColor colonColor(std::size_t start, std::span<const std::int64_t> parameters, std::string_view separators) {
    std::size_t run = 1;
    while (start + run < parameters.size() && start + run - 1 < separators.size() && separators[start + run - 1] == ':')
        ++run;
    if (parameters[start] == 5 && run > 1)
        return {Color::ansi256(component(parameters[start + 1])), run};
    if (parameters[start] == 2 && run >= 4) {
        // With five items the first is a colour space, which nobody uses.
        const auto rgb = parameters.subspan(start + (run > 4 ? 2 : 1));
        return {Color::trueColor(component(rgb[0]), component(rgb[1]), component(rgb[2])), run};
    }
    return {std::nullopt, run};
}

/// Colour and underline forms; returns how many parameters were taken.
std::size_t applyExtended(Color& target, std::size_t at, bool hasColon, const ControlSequence& sequence) {
    const ExtendedColor result = parseExtendedColor(at + 1, hasColon, sequence.parameters, sequence.separators);
    if (result.color)
        target = *result.color;
    return 1 + std::max<std::size_t>(result.used, 1);
}

/// One parameter; returns how many were taken.
std::size_t apply(Attribute& attribute, std::size_t at, const ControlSequence& sequence) {
    const auto code = static_cast<std::uint64_t>(sequence.parameters[at]);
    if (code >= renditions.size())
        return 1;
    const bool hasColon = at < sequence.separators.size() && sequence.separators[at] == ':';
    const Rendition rendition = renditions[code];
    switch (rendition.change) {
    case Change::none: break;
    case Change::reset: attribute = Attribute::empty; break;
    case Change::styleOn: attribute.style |= static_cast<CharacterStyle>(rendition.value); break;
    case Change::styleOff: attribute.style &= ~static_cast<CharacterStyle>(rendition.value); break;
    case Change::underline:
        if (hasColon && at + 1 < sequence.parameters.size()) {
            const std::int64_t style = sequence.parameters[at + 1];
            setUnderline(attribute, style > 5 ? UnderlineStyle::single : static_cast<UnderlineStyle>(style));
            return 2;
        }
        setUnderline(attribute, UnderlineStyle::single);
        break;
    case Change::underlineOff: setUnderline(attribute, UnderlineStyle::none); break;
    case Change::doubleUnderline: setUnderline(attribute, UnderlineStyle::double_); break;
    case Change::foreground: attribute.fg = Color::ansi256(rendition.value); break;
    case Change::background: attribute.bg = Color::ansi256(rendition.value); break;
    case Change::extendedForeground: return applyExtended(attribute.fg, at, hasColon, sequence);
    case Change::extendedBackground: return applyExtended(attribute.bg, at, hasColon, sequence);
    case Change::extendedUnderline: return applyExtended(attribute.underlineColor, at, hasColon, sequence);
    case Change::defaultForeground: attribute.fg = Color::defaultColor(); break;
    case Change::defaultBackground: attribute.bg = Color::defaultColor(); break;
    case Change::defaultUnderline: attribute.underlineColor = Color::absent(); break;
    }
    return 1;
}

}

ExtendedColor parseExtendedColor(
    std::size_t start, bool usesColons, std::span<const std::int64_t> parameters, std::string_view separators) {
    if (start >= parameters.size())
        return {};
    return usesColons ? colonColor(start, parameters, separators) : semicolonColor(start, parameters);
}

void selectGraphicRendition(Terminal& terminal, const ControlSequence& sequence) {
    if (!sequence.collect.empty())
        return;
    Attribute attribute = terminal.curAttr();
    for (std::size_t at = 0; at < sequence.parameters.size();)
        at += apply(attribute, at, sequence);
    terminal.setCurAttr(attribute);
}

}
