#pragma once

#include <string_view>

namespace korvi::service {

/// One line on standard error. Never a token, a message's text or an address.
void logLine(std::string_view text);

/// One line on standard output, flushed: what the person at the console or a script waits for.
void consoleLine(std::string_view text);

}
