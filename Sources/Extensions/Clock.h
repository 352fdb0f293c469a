#pragma once

#include <QDateTime>
#include <QUuid>

namespace Korvi {

// The time of day. Tests replace it.
class Clock {
public:
    virtual ~Clock() = default;
    virtual QDateTime now() const = 0; // UTC
};

// Chance. Tests replace it.
class Random {
public:
    virtual ~Random() = default;
    virtual double uniform() = 0;                        // from 0 up to, not including, 1
    virtual qint64 integer(qint64 low, qint64 high) = 0; // both ends included
    virtual QUuid uuid() = 0;
};

}
