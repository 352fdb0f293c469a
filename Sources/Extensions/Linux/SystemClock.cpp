#include "SystemClock.h"

#include <QRandomGenerator>

#include <random>

namespace Korvi {

QDateTime SystemClock::now() const {
    return QDateTime::currentDateTimeUtc();
}

// The system's generator, not the seeded one: nonces come from here too.
double SystemRandom::uniform() {
    return QRandomGenerator::system()->generateDouble();
}

qint64 SystemRandom::integer(qint64 low, qint64 high) {
    return std::uniform_int_distribution<qint64>(low, high)(*QRandomGenerator::system());
}

QUuid SystemRandom::uuid() {
    return QUuid::createUuid();
}

}
