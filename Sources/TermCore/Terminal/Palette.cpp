#include "Terminal/Palette.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace termcore {
namespace {

struct Lab {
    double l;
    double a;
    double b;
};

// D65
constexpr double whiteX = 0.95047;
constexpr double whiteY = 1.0;
constexpr double whiteZ = 1.08883;
constexpr double labThreshold = 0.008856;
constexpr double labSlope = 7.787;
constexpr double labOffset = 16.0 / 116.0;

double toLinear(std::uint16_t channel) {
    const double value = channel / 65535.0;
    return value > 0.04045 ? std::pow((value + 0.055) / 1.055, 2.4) : value / 12.92;
}

std::uint16_t fromLinear(double value) {
    const double encoded = value > 0.0031308 ? 1.055 * std::pow(value, 1 / 2.4) - 0.055 : value * 12.92;
    return static_cast<std::uint16_t>(std::lround(std::clamp(encoded, 0.0, 1.0) * 65535.0));
}

double labFunction(double t) {
    return t > labThreshold ? std::cbrt(t) : labSlope * t + labOffset;
}

double inverseLabFunction(double t) {
    const double cube = t * t * t;
    return cube > labThreshold ? cube : (t - labOffset) / labSlope;
}

Lab toLab(const Color& color) {
    const double r = toLinear(color.red);
    const double g = toLinear(color.green);
    const double b = toLinear(color.blue);
    const double x = labFunction((0.4124564 * r + 0.3575761 * g + 0.1804375 * b) / whiteX);
    const double y = labFunction((0.2126729 * r + 0.7151522 * g + 0.0721750 * b) / whiteY);
    const double z = labFunction((0.0193339 * r + 0.1191920 * g + 0.9503041 * b) / whiteZ);
    return {116 * y - 16, 500 * (x - y), 200 * (y - z)};
}

Color fromLab(const Lab& lab) {
    const double fy = (lab.l + 16) / 116;
    const double x = inverseLabFunction(lab.a / 500 + fy) * whiteX;
    const double y = inverseLabFunction(fy) * whiteY;
    const double z = inverseLabFunction(fy - lab.b / 200) * whiteZ;
    return {fromLinear(3.2404542 * x - 1.5371385 * y - 0.4985314 * z),
        fromLinear(-0.9692660 * x + 1.8760108 * y + 0.0415560 * z),
        fromLinear(0.0556434 * x - 0.2040259 * y + 1.0572252 * z)};
}

Lab mix(const Lab& from, const Lab& to, double t) {
    return {std::lerp(from.l, to.l, t), std::lerp(from.a, to.a, t), std::lerp(from.b, to.b, t)};
}

}

Palette::Colors Palette::generateXtermPalette(const std::array<Color, 16>& base) {
    constexpr std::array<unsigned, 6> levels{0, 95, 135, 175, 215, 255};
    Colors colors{};
    auto next = std::copy(base.begin(), base.end(), colors.begin());
    for (const unsigned red : levels)
        for (const unsigned green : levels)
            for (const unsigned blue : levels)
                *next++ = Color::fromBytes(red, green, blue);
    for (unsigned i = 0; i < 24; ++i) {
        const auto grey = static_cast<std::uint16_t>(i * 2570 + 2056);
        *next++ = {grey, grey, grey};
    }
    return colors;
}

Palette::Colors Palette::generateBase16LabPalette(
    const std::array<Color, 16>& base, const Color& foreground, const Color& background) {
    std::array<Lab, 8> corners{};
    corners[0] = toLab(background);
    for (std::size_t i = 1; i < 7; ++i)
        corners[i] = toLab(base[i]);
    corners[7] = toLab(foreground);

    Colors colors{};
    auto next = std::copy(base.begin(), base.end(), colors.begin());
    for (int r = 0; r < 6; ++r) {
        std::array<Lab, 4> edges{};
        for (std::size_t i = 0; i < 4; ++i)
            edges[i] = mix(corners[2 * i], corners[2 * i + 1], r / 5.0);
        for (int g = 0; g < 6; ++g) {
            const Lab low = mix(edges[0], edges[1], g / 5.0);
            const Lab high = mix(edges[2], edges[3], g / 5.0);
            for (int b = 0; b < 6; ++b)
                *next++ = fromLab(mix(low, high, b / 5.0));
        }
    }
    for (int i = 1; i <= 24; ++i)
        *next++ = fromLab(mix(corners[0], corners[7], i / 25.0));
    return colors;
}

void Palette::rebuild(Ansi256PaletteStrategy strategy, const Color& foreground, const Color& background) {
    defaultAnsiColors = strategy == Ansi256PaletteStrategy::xterm
        ? generateXtermPalette(installedColors)
        : generateBase16LabPalette(installedColors, foreground, background);
    ansiColors = defaultAnsiColors;
}

}
