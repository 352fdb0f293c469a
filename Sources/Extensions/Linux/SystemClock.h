#pragma once

#include "Clock.h"

namespace Korvi {

class SystemClock : public Clock {
public:
    QDateTime now() const override;
};

class SystemRandom : public Random {
public:
    double uniform() override;
    qint64 integer(qint64 low, qint64 high) override;
    QUuid uuid() override;
};

}
