#pragma once

#include <string_view>

namespace korvi::service {

// Files that the program carries with it; the build writes them out of LocalService/Demo.
std::string_view demoVideo();
std::string_view demoPdf();

}
