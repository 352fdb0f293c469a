#include "Tools/Picture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>
#include <zlib.h>

namespace korvi::service {

namespace {

void appendNumber(std::string& out, std::uint32_t value) {
    for (const unsigned shift : {24U, 16U, 8U, 0U})
        out += static_cast<char>((value >> shift) & 0xFFU);
}

void appendChunk(std::string& out, const std::string& type, const std::string& data) {
    appendNumber(out, static_cast<std::uint32_t>(data.size()));
    const std::string body = type + data;
    out += body;
    appendNumber(out,
        static_cast<std::uint32_t>(
            crc32(0, reinterpret_cast<const Bytef*>(body.data()), static_cast<uInt>(body.size()))));
}

using Colour = std::array<double, 3>;

Colour mixed(const Colour& a, const Colour& b, double share) {
    return {a[0] + (b[0] - a[0]) * share, a[1] + (b[1] - a[1]) * share, a[2] + (b[2] - a[2]) * share};
}

/// FNV-1a, and a generator that is the same everywhere.
struct Chance {
    std::uint64_t state;
    explicit Chance(std::string_view words)
        : state(14695981039346656037ULL) {
        for (const char c : words)
            state = (state ^ static_cast<unsigned char>(c)) * 1099511628211ULL;
    }
    /// From 0 to 1.
    double next() {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<double>(state >> 40U) / static_cast<double>(1U << 24U);
    }
};

}

std::string pngFrom(const Picture& picture) {
    std::string rows;
    const std::size_t stride = std::size_t{picture.width} * 3;
    rows.reserve((stride + 1) * picture.height);
    for (unsigned y = 0; y < picture.height; ++y) {
        // "Up": a row of a soft picture is nearly the one above it.
        rows += static_cast<char>(2);
        for (std::size_t i = 0; i < stride; ++i) {
            const auto above = y == 0 ? 0 : picture.rgb[(y - 1) * stride + i];
            rows += static_cast<char>(static_cast<std::uint8_t>(picture.rgb[y * stride + i] - above));
        }
    }
    uLongf size = compressBound(static_cast<uLong>(rows.size()));
    std::string packed(size, '\0');
    if (compress2(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(rows.data()),
            static_cast<uLong>(rows.size()), Z_BEST_SPEED) != Z_OK)
        throw std::runtime_error("zlib");
    packed.resize(size);

    std::string header;
    appendNumber(header, picture.width);
    appendNumber(header, picture.height);
    header += {8, 2, 0, 0, 0};
    std::string png = "\x89PNG\r\n\x1A\n";
    appendChunk(png, "IHDR", header);
    appendChunk(png, "IDAT", packed);
    appendChunk(png, "IEND", {});
    return png;
}

Picture landscapeFor(std::string_view words, unsigned width, unsigned height) {
    constexpr std::array<std::array<Colour, 3>, 4> palettes{{
        {{{28, 52, 97}, {244, 164, 120}, {46, 38, 66}}},
        {{{96, 165, 220}, {232, 244, 250}, {38, 92, 84}}},
        {{{18, 24, 56}, {98, 88, 160}, {16, 32, 40}}},
        {{{250, 190, 100}, {252, 236, 200}, {120, 60, 60}}},
    }};
    Chance chance(words);
    const auto& [top, horizon, ground] = palettes[static_cast<std::size_t>(chance.next() * 4) % 4];
    const double sunX = 0.2 + 0.6 * chance.next();
    const double sunY = 0.2 + 0.25 * chance.next();
    const double sunSize = 0.05 + 0.05 * chance.next();
    constexpr int ridges = 4;
    std::array<std::array<double, 4>, ridges> waves{};
    for (auto& wave : waves)
        wave = {1.5 + 3 * chance.next(), 6.28 * chance.next(), 5 + 7 * chance.next(), 6.28 * chance.next()};

    Picture picture{width, height, std::vector<std::uint8_t>(std::size_t{width} * height * 3)};
    for (unsigned y = 0; y < height; ++y) {
        for (unsigned x = 0; x < width; ++x) {
            const double u = static_cast<double>(x) / width;
            const double v = static_cast<double>(y) / height;
            Colour colour = mixed(top, horizon, std::min(1.0, v / 0.7));
            const double distance = std::hypot((u - sunX) * width / height, v - sunY);
            const double glow = std::max(0.0, 1 - distance / (sunSize * 4));
            colour = mixed(colour, {255, 244, 214}, distance < sunSize ? 1 : glow * glow * 0.6);
            for (std::size_t ridge = 0; ridge < ridges; ++ridge) {
                const auto& [slow, slowShift, fast, fastShift] = waves[ridge];
                const double line = 0.5 + 0.12 * static_cast<double>(ridge) +
                    0.06 * std::sin(slow * 2 * u + slowShift) + 0.02 * std::sin(fast * 2 * u + fastShift);
                if (v > line)
                    colour = mixed(horizon, ground, 0.35 + 0.2 * static_cast<double>(ridge));
            }
            for (std::size_t i = 0; i < 3; ++i)
                picture.rgb[(std::size_t{y} * width + x) * 3 + i] =
                    static_cast<std::uint8_t>(std::clamp(colour[i], 0.0, 255.0));
        }
    }
    return picture;
}

}
