#include "Core/Log.h"
#include "Options.h"
#include "Service.h"

#include <exception>
#include <iostream>

int main(int argc, char** argv) {
    using namespace korvi::service;
    try {
        const Options options = parseOptions({argv + 1, argv + argc});
        if (options.help) {
            std::cout << helpText();
            return 0;
        }
        if (options.version) {
            std::cout << "korvi-service " KORVI_VERSION << std::endl;
            return 0;
        }
        Service service(options);
        consoleLine("korvi-service " KORVI_VERSION ": " + service.address() + ", данные: " + service.data().string());
        service.run();
        return 0;
    } catch (const std::exception& error) {
        logLine(error.what());
        return 1;
    }
}
