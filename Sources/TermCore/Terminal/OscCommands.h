#pragma once

#include "Terminal/ImageSizeRequest.h"
#include "Terminal/ProgressReport.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace termcore {

class Terminal;

/// Operating system commands (xterm's control sequences).
namespace osc {

/// False when the number is unknown, or the data no command of that number.
bool dispatch(Terminal& terminal, std::int64_t code, std::span<const std::uint8_t> data);

/// OSC 9;4
std::optional<ProgressReport> parseProgressReport(std::string_view data);
ImageSizeRequest parseDimension(std::string_view text);
/// The URI of an OSC 8 payload: what follows the parameters.
std::string_view parseHyperlinkPayload(std::string_view payload);
/// Standard Base64 with padding; nothing when it is not.
std::optional<std::string> decodeBase64(std::string_view text);

}

}
