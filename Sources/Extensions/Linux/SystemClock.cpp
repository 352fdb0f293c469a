#include "SystemClock.h"

#include <QRandomGenerator>

#include <random>

namespace Korvi {

QDateTime SystemClock::now() const {
    return QDateTime::currentDateTimeUtc();
}

double SystemRandom::uniform() {
    return QRandomGenerator::global()->generateDouble();
}

qint64 SystemRandom::integer(qint64 low, qint64 high) {
    return std::uniform_int_distribution<qint64>(low, high)(*QRandomGenerator::global());
}

QUuid SystemRandom::uuid() {
    return QUuid::createUuid();
}

}
