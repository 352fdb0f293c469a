#include "Tools/TextFile.h"

#include <cerrno>
#include <iconv.h>
#include <string_view>
#include <utf8proc.h>

namespace korvi::service {

namespace {

/// More of it is UTF-8 than is not: a single broken byte makes no other encoding of it.
bool isUtf8(std::string_view bytes) {
    const auto* data = reinterpret_cast<const utf8proc_uint8_t*>(bytes.data());
    const auto size = static_cast<utf8proc_ssize_t>(bytes.size());
    constexpr utf8proc_ssize_t longest = 4;
    std::size_t good = 0;
    std::size_t bad = 0;
    for (utf8proc_ssize_t at = 0; at < size;) {
        utf8proc_int32_t point = 0;
        const auto used = utf8proc_iterate(data + at, size - at, &point);
        if (used < 0 && size - at < longest && bad == 0)
            break; // cut off
        good += used > 1 ? 1 : 0;
        bad += used < 0 ? 1 : 0;
        at += used < 0 ? 1 : used;
    }
    return bad <= good;
}

std::string converted(std::string bytes, const char* encoding) {
    const iconv_t converter = ::iconv_open("UTF-8", encoding);
    if (converter == reinterpret_cast<iconv_t>(-1)) // NOLINT: how it says so
        return bytes;
    std::string text;
    char* in = bytes.data();
    std::size_t left = bytes.size();
    while (left > 0) {
        char piece[4096];
        char* out = piece;
        std::size_t room = sizeof piece;
        const std::size_t done = ::iconv(converter, &in, &left, &out, &room);
        text.append(piece, sizeof piece - room);
        if (done != static_cast<std::size_t>(-1) || errno == EINVAL) // all of it, or all but a part of a character
            break;
        if (errno != EILSEQ)
            continue;
        text += "\xEF\xBF\xBD";
        ++in;
        --left;
    }
    ::iconv_close(converter);
    return text;
}

}

std::string textOfFile(std::string bytes) {
    if (bytes.starts_with("\xEF\xBB\xBF"))
        return bytes.substr(3);
    if (bytes.starts_with("\xFF\xFE"))
        return converted(bytes.substr(2), "UTF-16LE");
    if (bytes.starts_with("\xFE\xFF"))
        return converted(bytes.substr(2), "UTF-16BE");
    return isUtf8(bytes) ? bytes : converted(std::move(bytes), "WINDOWS-1251");
}

}
