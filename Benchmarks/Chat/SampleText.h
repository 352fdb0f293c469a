#pragma once

#include <QStringList>

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
        while (made.size() < characters)
            made += block() + "\n\n";
        return made;
    }

    // One paragraph that no line ends, with a marker at every few words.
    QString paragraph(qsizetype characters) {
        QString made;
        while (made.size() < characters)
            made += styledWord(6) + u' ';
        return made;
    }

    unsigned dice(unsigned below) { return static_cast<unsigned>(m_dice()) % below; }

private:
    QString words(unsigned count) {
        QStringList line;
        for (unsigned i = 0; i < count; ++i)
            line.append(styledWord(40));
        return line.join(u' ');
    }

    // Three of so many are bold, code or italic.
    QString styledWord(unsigned outOf) {
        static const QStringList looks{"**%1**", "`%1`", "*%1*"};
        const QString next = word().section(u'\n', 0, 0).trimmed();
        const unsigned style = dice(outOf);
        return style < 3 ? looks.at(style).arg(next) : next;
    }

    QString block() {
        QStringList lines;
        switch (dice(8)) {
        case 0: return QString(1 + static_cast<int>(dice(3)), u'#') + ' ' + words(4);
        case 1:
            for (unsigned i = 0; i < 4; ++i)
                lines.append((i % 2 ? QString("- ") : QString("%1. ").arg(i + 1)) + words(6 + dice(20)));
            break;
        case 2:
            lines.append("```python");
            for (unsigned i = 0; i < 6 + dice(20); ++i)
                lines.append("    value = compute(index, 42)  # шаг");
            lines.append("```");
            break;
        case 3:
            lines = QStringList{"| Имя | Время | Память |", "|---|:-:|--:|"};
            for (unsigned i = 0; i < 3 + dice(6); ++i)
                lines.append(QString("| %1 | O(n) | 1 |").arg(words(2)));
            break;
        case 4: return words(10) + " $O(n \\log n)$ " + words(20);
        case 5: return "$$\nT(n) = 2T(n/2) + O(n)\n$$";
        default: return words(30 + dice(60));
        }
        return lines.join(u'\n');
    }

    std::mt19937 m_dice;
};

}
