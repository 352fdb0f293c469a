#pragma once

#include "Clock.h"

namespace Korvi::Test {

// Chance that a test decides: `fraction` is what uniform() gives, identifiers count up.
class FakeRandom : public Random {
public:
    double fraction = 0;

    double uniform() override { return fraction; }
    qint64 integer(qint64 low, qint64 high) override {
        return low + static_cast<qint64>(fraction * static_cast<double>(high - low));
    }
    QUuid uuid() override {
        ++m_uuids;
        return QUuid(m_uuids, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
    }

private:
    unsigned m_uuids = 0;
};

}
