#pragma once

#include <functional>
#include <vector>

namespace Korvi {

// The way from this machine to the service, as the operating system knows it. Nothing is sent to find out.
struct NetworkPath {
    enum class Interface { wifi, cellular, wiredEthernet, other };

    bool isSatisfied = true;           // there is a way
    std::vector<Interface> interfaces; // those it may lead through

    bool operator==(const NetworkPath&) const = default;
};

class PathMonitor {
public:
    using Handler = std::function<void(const NetworkPath&)>;

    virtual ~PathMonitor() = default;
    // The handler gets the present path on a later turn of the main loop, and then each change. Started once; ends
    // with the monitor.
    virtual void start(Handler handler) = 0;
};

}
