#pragma once

#include "PathMonitor.h"

namespace Korvi::Test {

// The machine's network, as a test says it is: `paths.change({.isSatisfied = false, .interfaces = {}})`.
class FakePaths : public PathMonitor {
public:
    void start(Handler handler) override { m_handler = std::move(handler); }
    void change(const NetworkPath& path) { m_handler(path); }

private:
    Handler m_handler;
};

}
