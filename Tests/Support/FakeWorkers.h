#pragma once

#include "Workers.h"

#include <deque>

namespace Korvi::Test {

// Work is done at once, or, while `holds`, when the test says so.
class FakeWorkers : public Workers {
public:
    bool holds = false;

    void run(Work work, Work done) override {
        m_jobs.emplace_back(std::move(work), std::move(done));
        if (!holds)
            release();
    }
    void release() {
        while (!m_jobs.empty()) {
            const auto [work, done] = std::move(m_jobs.front());
            m_jobs.pop_front();
            work();
            done();
        }
    }

private:
    std::deque<std::pair<Work, Work>> m_jobs;
};

}
