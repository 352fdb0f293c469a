#include "TableText.h"

#include "Characters.h"
#include "Inline.h"

namespace Korvi::Markdown {

using namespace Qt::Literals;

QStringList parseTableRow(QStringView line) {
    line = trimmedBlanks(line);
    while (line.startsWith(u'|'))
        line = line.sliced(1);
    while (line.endsWith(u'|'))
        line.chop(1);
    QStringList cells;
    for (const QStringView cell : line.tokenize(u'|'))
        cells.append(trimmedBlanks(cell).toString());
    return cells;
}

std::vector<Alignment> parseTableAlignments(QStringView line) {
    std::vector<Alignment> alignments;
    for (const QString& cell : parseTableRow(line)) {
        const bool isTrailing = cell.endsWith(u':');
        alignments.push_back(!isTrailing ? Alignment::leading
                : cell.startsWith(u':')  ? Alignment::center
                                         : Alignment::trailing);
    }
    return alignments;
}

namespace {

// \\text\{([^}]*)\}
QString withoutTextCommands(const QString& text) {
    constexpr QStringView command = u"\\text{";
    QString result;
    qsizetype written = 0;
    for (qsizetype at = text.indexOf(command); at >= 0; at = text.indexOf(command, written)) {
        const qsizetype content = at + command.size();
        const qsizetype close = text.indexOf(u'}', content);
        if (close < 0)
            break;
        result += QStringView(text).sliced(written, at - written);
        result += QStringView(text).sliced(content, close - content);
        written = close + 1;
    }
    return result += QStringView(text).sliced(written);
}

// (?<!\S)\$([^$]+)\$(?!\S)
QString withoutFormulaMarks(const QString& text) {
    const auto isOutside = [&](qsizetype at) { return at < 0 || at >= text.size() || text[at].isSpace(); };
    QString result;
    qsizetype written = 0;
    for (qsizetype at = text.indexOf(u'$'); at >= 0;) {
        const qsizetype close = text.indexOf(u'$', at + 1);
        if (close <= at + 1 || !isOutside(at - 1) || !isOutside(close + 1)) {
            at = close;
            continue;
        }
        result += QStringView(text).sliced(written, at - written);
        result += QStringView(text).sliced(at + 1, close - at - 1);
        written = close + 1;
        at = text.indexOf(u'$', written);
    }
    return result += QStringView(text).sliced(written);
}

QString withSingleSpaces(const QString& text) {
    QString result;
    result.reserve(text.size());
    for (const QChar c : text) {
        if (c != u' ' || !result.endsWith(u' '))
            result.append(c);
    }
    return result;
}

}

QString cleanLatex(QString text) {
    text.remove(u"$$"_s);
    text = withoutTextCommands(text);
    text.replace(u"\\,"_s, u" "_s);
    text = withoutFormulaMarks(text);
    for (const char16_t c : {u'$', u'%', u'&', u'_'})
        text.replace(u"\\"_s + QChar(c), QString(QChar(c)));
    return trimmedBlanks(withSingleSpaces(text)).toString();
}

QString tableAsTsv(const Block::Table& table) {
    QStringList lines;
    const auto add = [&](const QStringList& cells) {
        QStringList line;
        for (const QString& cell : cells) {
            QString plain;
            for (const Run& run : parseInlineMarkdown(cleanLatex(cell)))
                plain += run.text;
            for (QChar& c : plain) {
                if (c == u'\t' || isLineTerminator(c.unicode()))
                    c = u' ';
            }
            line.append(plain);
        }
        lines.append(line.join(u'\t'));
    };
    add(table.headers);
    for (const QStringList& row : table.rows)
        add(row);
    return lines.join(u'\n');
}

}
