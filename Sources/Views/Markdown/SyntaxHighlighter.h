#pragma once

#include "PatternMatcher.h"

#include <QString>

#include <span>
#include <vector>

namespace Korvi {

// Which colour each character of a piece of code gets, by the few rules of its language. Positions are UTF-16 units.
class SyntaxHighlighter {
public:
    enum class Token { keyword, string, number, comment, type, plain };

    struct Rule {
        Token token;
        PatternMatcher::Shape shape;
        QStringView pattern; // a regular expression; ^ and $ match at lines
    };
    struct CompiledRule {
        Token token;
        PatternMatcher matcher;
    };
    struct Range {
        qsizetype start;
        qsizetype length;
        Token token;         // of its colour
        bool isBold = false; // that of a keyword stays where a later rule changes the colour

        bool operator==(const Range&) const = default;
    };

    SyntaxHighlighter() = delete;

    // By the name in any case; a language that is not known has rules too.
    static std::span<const Rule> rulesForLanguage(const QString& language);
    // Compiled once for each set of rules, on the main thread.
    static const std::vector<CompiledRule>& compiledRules(const QString& language);

    // Stretches of one look in their order; what is plain is left out. Where rules overlap, the later one's colour counts.
    static std::vector<Range> highlight(const QString& code, const QString& language);
};

}
