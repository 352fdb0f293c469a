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

    // All that an answer may consist of: headers, paragraphs with bold words, code and formulas, lists, code, tables.
    QString mixed(qsizetype characters) {
        QString made;
        const auto words = [&](unsigned count) {
            QString line;
            for (unsigned i = 0; i < count; ++i) {
                const QString next = word().trimmed().section(u'\n', 0, 0);
                const unsigned style = dice(40);
                line += style == 0 ? u"**" + next + u"** " : style == 1 ? u'`' + next + u"` " : next + u' ';
            }
            return line;
        };
        while (made.size() < characters) {
            switch (dice(8)) {
            case 0: made += QString(1 + dice(3), u'#') + u' ' + words(4) + u"\n\n"; break;
            case 1:
                for (unsigned i = 0; i < 4; ++i)
                    made += (i % 2 ? u"- "_qs : QString::number(i + 1) + u". ") + words(6 + dice(20)) + u'\n';
                made += u'\n';
                break;
            case 2:
                made += u"```python\n"_qs;
                for (unsigned i = 0; i < 6 + dice(20); ++i)
                    made += u"    value = compute(index, 42)  # шаг\n"_qs;
                made += u"```\n\n"_qs;
                break;
            case 3:
                made += u"| Имя | Время | Память |\n|---|:-:|--:|\n"_qs;
                for (unsigned i = 0; i < 3 + dice(6); ++i)
                    made += u"| " + words(2) + u" | O(n) | 1 |\n";
                made += u'\n';
                break;
            case 4: made += words(10) + u"$O(n \\log n)$ " + words(20) + u"\n\n"; break;
            case 5: made += u"$$\nT(n) = 2T(n/2) + O(n)\n$$\n\n"_qs; break;
            default: made += words(30 + dice(60)) + u"\n\n";
            }
        }
        return made;
    }

    unsigned dice(unsigned below) { return static_cast<unsigned>(m_dice()) % below; }

private:
    std::mt19937 m_dice;
};

}
