#pragma once

#include <QString>

#include <exception>

namespace Korvi {

// What a reader is told of a failed request: Russian for the errors of our own.
QString errorText(const std::exception& error);

}
