#include "Core/Text.h"

#include <utf8proc.h>

namespace korvi::service {

namespace {

/// Control characters count as space: a title or a name has no use for them.
bool isSpace(unsigned char c) {
    return c <= ' ' || c == 0x7F;
}

}

std::size_t utf16Length(std::string_view utf8) {
    std::size_t units = 0;
    for (const char c : utf8) {
        const auto byte = static_cast<unsigned char>(c);
        if ((byte & 0xC0U) != 0x80U)
            units += byte >= 0xF0U ? 2 : 1;
    }
    return units;
}

std::string firstWords(std::string_view text, std::size_t limit) {
    std::string line;
    std::size_t points = 0;
    std::size_t lastWordEnd = 0;
    bool cut = false;
    for (std::size_t i = 0; i < text.size() && !cut;) {
        if (isSpace(static_cast<unsigned char>(text[i]))) {
            if (!line.empty() && line.back() != ' ') {
                lastWordEnd = line.size();
                line += ' ';
                ++points;
            }
            ++i;
            continue;
        }
        std::size_t end = i + 1;
        while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U)
            ++end;
        if (points == limit) {
            cut = true;
        } else {
            line.append(text, i, end - i);
            ++points;
            i = end;
        }
    }
    if (cut && lastWordEnd > 0)
        line.resize(lastWordEnd);
    return trimmed(line);
}

std::optional<std::string> fromBase64Url(std::string_view text) {
    constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
    while (!text.empty() && text.back() == '=')
        text.remove_suffix(1);
    std::string bytes;
    unsigned held = 0;
    int bits = 0;
    for (const char c : text) {
        const auto value = alphabet.find(c);
        if (value == std::string_view::npos)
            return std::nullopt;
        held = (held << 6U) | static_cast<unsigned>(value);
        bits += 6;
        if (bits >= 8) {
            bits -= 8;
            bytes += static_cast<char>((held >> static_cast<unsigned>(bits)) & 0xFFU);
        }
    }
    return bytes;
}

std::string lowerCase(std::string_view utf8) {
    std::string result;
    result.reserve(utf8.size());
    const auto* data = reinterpret_cast<const utf8proc_uint8_t*>(utf8.data());
    const auto size = static_cast<utf8proc_ssize_t>(utf8.size());
    for (utf8proc_ssize_t i = 0; i < size;) {
        utf8proc_int32_t point = 0;
        const auto used = utf8proc_iterate(data + i, size - i, &point);
        if (used <= 0)
            break;
        utf8proc_uint8_t encoded[4];
        const auto length = utf8proc_encode_char(utf8proc_tolower(point), encoded);
        result.append(reinterpret_cast<const char*>(encoded), static_cast<std::size_t>(length));
        i += used;
    }
    return result;
}

std::string trimmed(std::string_view text) {
    while (!text.empty() && isSpace(static_cast<unsigned char>(text.front())))
        text.remove_prefix(1);
    while (!text.empty() && isSpace(static_cast<unsigned char>(text.back())))
        text.remove_suffix(1);
    return std::string(text);
}

}
