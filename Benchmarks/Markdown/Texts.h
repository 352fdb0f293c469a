#pragma once

#include <QString>

#include <vector>

namespace Korvi {

// An answer as long as asked for: Russian prose with markers, lists, headings, code, tables, formulas, citations.
QString mixedAnswer(qsizetype length);

struct HostileText {
    const char* name;
    QString start;
    QString repeated;

    QString ofLength(qsizetype length) const { return start + repeated.repeated(length / repeated.size()); }
};
// What makes a careless parser slow.
std::vector<HostileText> hostileTexts();

}
