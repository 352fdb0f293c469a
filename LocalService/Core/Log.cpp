#include "Core/Log.h"

#include <iostream>

namespace korvi::service {

void logLine(std::string_view text) {
    std::cerr << "korvi-service: " << text << std::endl;
}

void consoleLine(std::string_view text) {
    std::cout << text << std::endl;
}

}
