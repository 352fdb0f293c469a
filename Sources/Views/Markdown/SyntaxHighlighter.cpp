#include "SyntaxHighlighter.h"

#include "CodeColouring.h"

#include <algorithm>
#include <map>

namespace Korvi {

namespace {

using Rule = SyntaxHighlighter::Rule;
using Shape = PatternMatcher::Shape;
using enum SyntaxHighlighter::Token;

constexpr Rule doubleQuotes{string, Shape::quoted, u"\"[^\"\\\\]*(\\\\.[^\"\\\\]*)*\""};
constexpr Rule singleQuotes{string, Shape::quoted, u"'[^'\\\\]*(\\\\.[^'\\\\]*)*'"};
constexpr Rule tripleQuotes{string, Shape::enclosed, u"\"\"\"[\\s\\S]*?\"\"\""};
constexpr Rule numbers{number, Shape::number, u"\\b\\d+(\\.\\d+)?\\b"};
constexpr Rule slashComments{comment, Shape::lineComment, u"//.*"};
constexpr Rule hashComments{comment, Shape::lineComment, u"#.*"};

constexpr Rule swiftRules[] = {
    slashComments,
    doubleQuotes,
    {keyword, Shape::words,
        u"\\b(func|var|let|if|else|guard|return|import|struct|class|enum|extension|public|private|init|try|await|do|"
        u"catch|switch|case|default|true|false|nil)\\b"},
    {type, Shape::words, u"\\b(String|Int|Bool|Double|Float|Array|Dictionary|Set|View|URL|Date)\\b"},
    numbers,
};

constexpr Rule pythonRules[] = {
    hashComments,
    doubleQuotes,
    singleQuotes,
    tripleQuotes,
    {keyword, Shape::words,
        u"\\b(def|class|import|from|return|if|else|elif|for|while|try|except|with|as|pass|lambda|True|False|None|"
        u"print)\\b"},
    numbers,
};

constexpr Rule scriptRules[] = {
    slashComments,
    doubleQuotes,
    singleQuotes,
    {keyword, Shape::words,
        u"\\b(function|const|let|var|return|if|else|import|export|from|class|extends|true|false|null|undefined|new|"
        u"this|async|await|try|catch)\\b"},
    {type, Shape::words, u"\\b(console|window|document)\\b"},
    numbers,
};

constexpr Rule markupRules[] = {
    {comment, Shape::enclosed, u"<!--[\\s\\S]*?-->"},
    {keyword, Shape::tag, u"</?[a-zA-Z0-9]+"},
    doubleQuotes,
    {type, Shape::words, u"\\b(class|id|style|src|href|width|height|alt|title)\\b"},
};

constexpr Rule otherRules[] = {
    {comment, Shape::lineComment, u"//.*|#.*"},
    doubleQuotes,
    numbers,
    {keyword, Shape::words, u"\\b(return|if|else|function|def|class|import)\\b"},
};

struct Language {
    QStringView name;
    std::span<const Rule> rules;
};

constexpr Language languages[] = {
    {u"swift", swiftRules},
    {u"python", pythonRules},
    {u"py", pythonRules},
    {u"javascript", scriptRules},
    {u"js", scriptRules},
    {u"typescript", scriptRules},
    {u"ts", scriptRules},
    {u"react", scriptRules},
    {u"tsx", scriptRules},
    {u"jsx", scriptRules},
    {u"html", markupRules},
    {u"xml", markupRules},
};

}

std::span<const Rule> SyntaxHighlighter::rulesForLanguage(const QString& language) {
    const auto* known = std::ranges::find(languages, language.toLower(), &Language::name);
    return known == std::end(languages) ? std::span<const Rule>(otherRules) : known->rules;
}

const std::vector<SyntaxHighlighter::CompiledRule>& SyntaxHighlighter::compiledRules(const QString& language) {
    // By the set of rules: names come from outside, and there is no end of them.
    static std::map<const Rule*, std::vector<CompiledRule>> cache;
    const std::span<const Rule> rules = rulesForLanguage(language);
    const auto [entry, isNew] = cache.try_emplace(rules.data());
    if (isNew) {
        for (const Rule& rule : rules)
            entry->second.push_back({rule.token, PatternMatcher(rule.shape, rule.pattern)});
    }
    return entry->second;
}

std::vector<SyntaxHighlighter::Range> SyntaxHighlighter::highlight(const QString& code, const QString& language) {
    CodeColouring colouring(language);
    colouring.advance(code, CodeColouring::Extent::everything);
    return colouring.ranges(0, code.size());
}

}
