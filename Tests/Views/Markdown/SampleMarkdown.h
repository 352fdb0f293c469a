#pragma once

#include <QString>

#include <random>

namespace Korvi::Markdown {

// Random texts from a seed: the same ones on every machine.
class Chance {
public:
    explicit Chance(unsigned seed)
        : dice(seed) {}

    qsizetype below(qsizetype bound) { return qsizetype(dice() % quint64(bound)); }
    // Up to `longest` characters of an alphabet.
    QString text(QStringView alphabet, qsizetype longest);
    // Up to `count` pieces of what answers are made of and of what could confuse a parser of them.
    QString answer(qsizetype count);

private:
    std::mt19937 dice;
};

}
