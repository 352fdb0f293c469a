#include "Inline.h"

#include "Characters.h"

#include <algorithm>

namespace Korvi::Markdown {

std::vector<TextPart> parseInlineLatex(QStringView text) {
    std::vector<TextPart> parts;
    QString plain;
    QString formula;
    bool inLatex = false;
    const auto flush = [&](QString& buffer, bool isLatex) {
        if (!buffer.isEmpty())
            parts.push_back({std::exchange(buffer, {}), isLatex});
    };
    qsizetype from = 0;
    for (qsizetype at = text.indexOf(u'$'); at >= 0; at = text.indexOf(u'$', from)) {
        (inLatex ? formula : plain).append(text.sliced(from, at - from));
        from = at + 1;
        if (from < text.size() && text[from] == u'$') {
            plain.append(u"$$");
            ++from;
        } else if (!inLatex) {
            flush(plain, false);
            inLatex = true;
        } else {
            if (!formula.isEmpty())
                flush(plain, false);
            flush(formula, true);
            inLatex = false;
        }
    }
    (inLatex ? formula : plain).append(text.sliced(from));
    if (inLatex)
        plain.append(u'$').append(formula);
    flush(plain, false);
    return parts;
}

bool hasInlineLatex(QStringView text) {
    bool inLatex = false;
    bool isEmpty = true;
    qsizetype from = 0;
    for (qsizetype at = text.indexOf(u'$'); at >= 0; at = text.indexOf(u'$', from)) {
        isEmpty = isEmpty && at == from;
        from = at + 1;
        if (from < text.size() && text[from] == u'$') {
            ++from;
        } else if (inLatex && !isEmpty) {
            return true;
        } else {
            inLatex = !inLatex;
            isEmpty = true;
        }
    }
    return false;
}

namespace {

struct MarkerCounts {
    qsizetype pairs = 0;
    qsizetype stars = 0;
    qsizetype backticks = 0;

    void add(QStringView text) {
        for (qsizetype i = 0; i < text.size(); ++i) {
            if (text[i] == u'`') {
                ++backticks;
            } else if (text[i] == u'*') {
                const bool isPair = i + 1 < text.size() && text[i + 1] == u'*';
                (isPair ? pairs : stars) += 1;
                i += isPair;
            }
        }
    }
    bool areEven() const { return pairs % 2 == 0 && stars % 2 == 0 && backticks % 2 == 0; }
};

// Finds the last place where a text is settled, while its markers are gone through.
class SettledSearch {
public:
    // Up to `common` the text is as it was before markers were stripped from it.
    SettledSearch(QStringView text, qsizetype common)
        : m_text(text)
        , m_common(common) {}

    // Between `from`, where the last match ended, and `to` there are plain characters only.
    void passPlain(qsizetype from, qsizetype to, qsizetype runs) {
        if (from < to)
            tryPlain(from, std::min(to, m_common), runs);
    }

    SettledInline found;

private:
    void tryPlain(qsizetype from, qsizetype to, qsizetype runs) {
        // An exclamation mark may begin an image, and blanks at the end of a paragraph are not shown.
        const auto mayEnd = [](QChar c) { return c != u'!' && !c.isSpace() && !c.isHighSurrogate(); };
        while (to > from && !mayEnd(m_text[to - 1]))
            --to;
        if (to <= from)
            return;
        m_counts.add(m_text.sliced(m_counted, to - m_counted));
        m_counted = to;
        if (m_counts.areEven())
            found = {to, runs, to - from};
    }

    QStringView m_text;
    qsizetype m_common;
    MarkerCounts m_counts;
    qsizetype m_counted = 0;
};

}

QString stripUnclosedMarkers(const QString& text) {
    MarkerCounts counts;
    counts.add(text);
    if (counts.areEven())
        return text;
    QString stripped = text;
    if (counts.pairs % 2 != 0)
        stripped.remove(stripped.lastIndexOf(u"**"), 2);
    if (counts.backticks % 2 != 0)
        stripped.remove(stripped.lastIndexOf(u'`'), 1);
    // As they stand now: what was removed may have stood between stars.
    const qsizetype pairs = stripped.count(u"**");
    if ((stripped.count(u'*') - 2 * pairs) % 2 != 0)
        stripped.remove(stripped.lastIndexOf(u'*'), 1);
    return stripped;
}

// (\*\*(.+?)\*\*)|((?<!\*)\*([^\*]+?)\*(?!\*))|(`([^`]+?)`)
std::vector<Run> parseInlineMarkdown(const QString& raw, SettledInline* settled) {
    const QString stripped = stripUnclosedMarkers(raw);
    const QStringView text = stripped;
    std::vector<Run> runs;
    qsizetype written = 0;
    const auto add = [&](qsizetype from, qsizetype to, Style style) {
        if (to > from)
            runs.push_back({text.sliced(from, to - from).toString(), style});
    };
    const auto addMatch = [&](qsizetype from, qsizetype to, qsizetype marker, Style style) {
        add(written, from, Style::base);
        add(from + marker, to - marker, style);
        written = to;
        return to;
    };
    const auto isStar = [&](qsizetype at) { return at >= 0 && at < text.size() && text[at] == u'*'; };
    const auto isMarker = [](QChar c) { return c == u'*' || c == u'`'; };

    NextFinder pairs(text, QStringView(u"**"));
    NextFinder stars(text, u'*');
    NextFinder backticks(text, u'`');
    qsizetype lineEnd = -1; // the first line terminator behind the last place that one was looked for
    const auto staysInLine = [&](qsizetype from, qsizetype to) {
        if (lineEnd < from)
            lineEnd = std::find_if(text.begin() + from, text.end(), [](QChar c) {
                return isLineTerminator(c.unicode());
            }) - text.begin();
        return to <= lineEnd;
    };
    const bool isStripped = stripped.size() != raw.size();
    SettledSearch search(text,
        settled && isStripped ? std::mismatch(text.begin(), text.end(), raw.begin()).first - text.begin()
                              : text.size());
    bool isSearching = settled != nullptr; // until a marker has no partner
    for (qsizetype i = 0; i < text.size();) {
        i = std::find_if(text.begin() + i, text.end(), isMarker) - text.begin();
        if (isSearching)
            search.passPlain(written, i, qsizetype(runs.size()));
        if (i == text.size())
            break;
        if (text[i] == u'`') {
            const qsizetype close = backticks.find(i + 1);
            isSearching = isSearching && close > i + 1;
            i = close > i + 1 ? addMatch(i, close + 1, 1, Style::code) : i + 1;
            continue;
        }
        if (isStar(i + 1)) {
            const qsizetype close = pairs.find(i + 3);
            if (close >= 0 && staysInLine(i + 2, close)) {
                i = addMatch(i, close + 2, 2, Style::bold);
                continue;
            }
        } else if (!isStar(i - 1)) {
            const qsizetype close = stars.find(i + 1);
            if (close >= 0 && !isStar(close + 1)) {
                i = addMatch(i, close + 1, 1, Style::italic);
                continue;
            }
        }
        isSearching = false;
        ++i;
    }
    if (settled)
        *settled = search.found;
    add(written, text.size(), Style::base);
    return runs;
}

}
