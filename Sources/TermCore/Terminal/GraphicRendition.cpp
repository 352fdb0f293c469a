#include "Terminal/GraphicRendition.h"

#include "Terminal/Terminal.h"

#include <algorithm>
#include <array>

namespace termcore::commands {
namespace {

using Color = Attribute::Color;

struct StyleChange {
    CharacterStyle bits = CharacterStyle::none;
    bool on = false;
};

/// By parameter.
constexpr auto styleChanges = [] {
    std::array<StyleChange, 30> changes{};
    changes[1] = {CharacterStyle::bold, true};
    changes[2] = {CharacterStyle::dim, true};
    changes[3] = {CharacterStyle::italic, true};
    changes[5] = {CharacterStyle::blink, true};
    changes[7] = {CharacterStyle::inverse, true};
    changes[8] = {CharacterStyle::invisible, true};
    changes[9] = {CharacterStyle::crossedOut, true};
    changes[22] = {CharacterStyle::bold | CharacterStyle::dim, false};
    changes[23] = {CharacterStyle::italic, false};
    changes[25] = {CharacterStyle::blink, false};
    changes[27] = {CharacterStyle::inverse, false};
    changes[28] = {CharacterStyle::invisible, false};
    changes[29] = {CharacterStyle::crossedOut, false};
    return changes;
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

/// One parameter; returns how many were taken.
std::size_t apply(Attribute& attribute, std::size_t at, const ControlSequence& sequence) {
    const std::int64_t code = sequence.parameters[at];
    const bool hasColon = at < sequence.separators.size() && sequence.separators[at] == ':';
    const auto extended = [&](Color& target) {
        const ExtendedColor result = parseExtendedColor(at + 1, hasColon, sequence.parameters, sequence.separators);
        if (result.color)
            target = *result.color;
        return 1 + std::max<std::size_t>(result.used, 1);
    };
    if (code >= 30 && code <= 37)
        attribute.fg = Color::ansi256(static_cast<std::uint8_t>(code - 30));
    else if (code >= 40 && code <= 47)
        attribute.bg = Color::ansi256(static_cast<std::uint8_t>(code - 40));
    else if (code >= 90 && code <= 97)
        attribute.fg = Color::ansi256(static_cast<std::uint8_t>(code - 90 + 8));
    else if (code >= 100 && code <= 107)
        attribute.bg = Color::ansi256(static_cast<std::uint8_t>(code - 100 + 8));
    else {
        switch (code) {
        case 0: attribute = Attribute::empty; break;
        case 4:
            if (hasColon && at + 1 < sequence.parameters.size()) {
                const std::int64_t style = sequence.parameters[at + 1];
                setUnderline(attribute, style > 5 ? UnderlineStyle::single : static_cast<UnderlineStyle>(style));
                return 2;
            }
            setUnderline(attribute, UnderlineStyle::single);
            break;
        case 21: setUnderline(attribute, UnderlineStyle::double_); break;
        case 24: setUnderline(attribute, UnderlineStyle::none); break;
        case 38: return extended(attribute.fg);
        case 39: attribute.fg = Color::defaultColor(); break;
        case 48: return extended(attribute.bg);
        case 49: attribute.bg = Color::defaultColor(); break;
        case 58: return extended(attribute.underlineColor);
        case 59: attribute.underlineColor = Color::absent(); break;
        default:
            if (code < static_cast<std::int64_t>(styleChanges.size())) {
                const StyleChange& change = styleChanges[static_cast<std::size_t>(code)];
                attribute.style = change.on ? attribute.style | change.bits : attribute.style & ~change.bits;
            }
        }
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
