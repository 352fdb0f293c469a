#pragma once

#include "Terminal/Terminal.h"

#include <string>

namespace termcore::tool {

/// The text of the rows, without blanks at the end of a row and without empty rows at the end.
std::string dumpScreen(const Terminal& terminal);
/// The same with the history in front; wrapped rows are joined.
std::string dumpScrollback(const Terminal& terminal);
/// The screen as JSON: size, cursor, titles, and for each row its text and runs of equal attributes.
std::string dumpJson(const Terminal& terminal);

/// "red", "palette 12" and the like, for reports and tests: "default", "inverse default", "index N" or "#rrggbb".
std::string describe(const Attribute::Color& color);
/// The text of one absolute row.
std::string rowText(const Terminal& terminal, int row);

}
