#pragma once

#include <QEventLoop>
#include <QTimer>

#include <chrono>
#include <functional>

namespace Korvi::Test {

// Runs the real event loop until the condition holds: ASSERT_TRUE(waitFor([&] { return done; })). False when the
// bound passes first.
inline bool waitFor(
    const std::function<bool()>& condition, std::chrono::milliseconds bound = std::chrono::seconds(10)) {
    if (condition())
        return true;
    QEventLoop loop;
    QTimer poll;
    QTimer limit;
    bool held = false;
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if ((held = condition()))
            loop.quit();
    });
    QObject::connect(&limit, &QTimer::timeout, &loop, &QEventLoop::quit);
    limit.setSingleShot(true);
    poll.start(1);
    limit.start(bound);
    loop.exec();
    return held || condition();
}

// A few whole turns of the event loop, for what must *not* come: whatever was already under way has come after it.
inline void settle(int turns = 20) {
    int left = turns;
    waitFor([&] { return left-- <= 0; });
}

}
