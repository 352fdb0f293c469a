#pragma once

#include "Workers.h"

#include <QObject>
#include <QThreadPool>

namespace Korvi {

// A few threads. Ends when the work under way has.
class ThreadWorkers : public Workers {
public:
    ThreadWorkers();
    ~ThreadWorkers() override;

    void run(Work work, Work done) override;

private:
    QObject m_mainThread; // what is done runs as long as it stands
    QThreadPool m_pool;
};

}
