#pragma once

#include <QString>

#include <random>

namespace Korvi {

// Russian text as models write it: paragraphs of a few sentences, a list now and then. The same in every run.
class SampleText {
public:
    explicit SampleText(unsigned seed = 1)
        : m_dice(seed) {}

    // A word with the space or the line feed behind it; about one in sixty ends a paragraph.
    QString word() {
        static const QStringList words{"слияние", "массив", "половина", "сортирует", "затем", "и", "в", "порядок",
            "каждую", "быстрее", "память", "рекурсия", "элемент", "сравнение"};
        const QString next = words.at(static_cast<qsizetype>(m_dice() % static_cast<unsigned>(words.size())));
        return m_dice() % 60 == 0 ? next + ".\n\n" : m_dice() % 40 == 0 ? next + "\n- " : next + u' ';
    }

    QString text(qsizetype characters) {
        QString made;
        while (made.size() < characters)
            made += word();
        return made;
    }

    unsigned dice(unsigned below) { return static_cast<unsigned>(m_dice()) % below; }

private:
    std::mt19937 m_dice;
};

}
