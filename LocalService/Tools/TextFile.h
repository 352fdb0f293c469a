#pragma once

#include <string>

namespace korvi::service {

/// The text of a file as UTF-8, whatever encoding it is in: UTF-8, UTF-16 with a mark of its byte order, or else
/// Windows-1251, as much Russian text still is. The end of the bytes may be missing.
std::string textOfFile(std::string bytes);

}
