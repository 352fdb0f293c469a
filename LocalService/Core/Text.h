#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace korvi::service {

/// UTF-8 helpers for text that is known to be valid UTF-8 (JSON parsing has checked it).

/// Length in UTF-16 code units: the longest of the usual ways to count characters.
std::size_t utf16Length(std::string_view utf8);

/// The first words of `text` on one line, at most `limit` code points, cut at a word border where there is one.
std::string firstWords(std::string_view text, std::size_t limit);

/// Absent if it is not URL-safe base64 (padding may be missing).
std::optional<std::string> fromBase64Url(std::string_view text);

std::string lowerCase(std::string_view utf8);
std::string trimmed(std::string_view text);

}
