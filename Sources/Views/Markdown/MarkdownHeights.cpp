#include "MarkdownHeights.h"

#include <algorithm>
#include <cmath>

namespace Korvi::MarkdownHeights {

namespace {

constexpr double raggedEdge = 0.96; // how much of a line is filled
constexpr double plainSize = 13;
constexpr double plainCharacter = 7; // pixels
constexpr double fontLine = 1.21;    // of the font's own line to its size

// The kind of paragraph that a line begins with these characters.
Paragraph::Kind kindOf(QStringView line) {
    const QChar first = line.front();
    if (first == u'#') {
        const auto level = std::find_if(line.begin(), line.end(), [](QChar c) { return c != u'#'; }) - line.begin();
        return static_cast<Paragraph::Kind>(std::min<qsizetype>(level, 4) - 1);
    }
    if (line.size() > 1 && line.at(1) == u' ' && (first == u'-' || first == u'*' || first == u'•'))
        return Paragraph::Kind::listItem;
    if (first.isDigit() && line.first(std::min<qsizetype>(line.size(), 5)).contains(u". "))
        return Paragraph::Kind::numberedItem;
    return Paragraph::Kind::body;
}

}

double inLine(double characters, double fontSize, double indent) {
    return std::max(1.0, (characters - indent / plainCharacter) * raggedEdge * plainSize / fontSize);
}

double lines(double length, double inLine) {
    return std::max(1.0, std::ceil(length / inLine));
}

double lineHeight(const ParagraphLook& look) {
    return std::ceil(look.fontSize * fontLine) + look.lineSpacing;
}

double of(QStringView markdown, double characters) {
    double height = 0;
    double open = 0;  // length of a paragraph that may go on in the next line
    double after = 0; // the space that the last paragraph keeps below itself
    bool inCode = false;
    bool inTable = false;
    const auto close = [&] {
        if (open > 0) {
            const ParagraphLook& look = lookOf(Paragraph::Kind::body);
            height += after + lines(open, inLine(characters, look.fontSize, 0)) * lineHeight(look);
            after = look.after;
        }
        open = 0;
    };
    for (qsizetype from = 0; from <= markdown.size();) {
        qsizetype to = markdown.indexOf(u'\n', from);
        if (to < 0)
            to = markdown.size();
        const QStringView raw = markdown.sliced(from, to - from);
        from = to + 1;
        if (raw.startsWith(u"```")) {
            close();
            if (!inCode)
                height += after + aroundCode;
            after = gap;
            inCode = !inCode;
            continue;
        }
        if (inCode) {
            height += codeLine;
            continue;
        }
        const QStringView line = raw.trimmed();
        const bool tableLine = line.startsWith(u'|');
        if (inTable && !tableLine)
            height -= tableRow; // the line under its header
        if (tableLine) {
            close();
            height += (inTable ? 0 : after) + tableRow;
            after = gap;
        }
        inTable = tableLine;
        if (tableLine)
            continue;
        if (line.isEmpty()) {
            close();
            continue;
        }
        if (line.startsWith(u"$$")) {
            close();
            height += after + formula;
            after = gap;
            continue;
        }
        const Paragraph::Kind kind = kindOf(line);
        if (kind == Paragraph::Kind::body) {
            open += static_cast<double>(line.size()) + 1;
            continue;
        }
        close();
        const ParagraphLook& look = lookOf(kind);
        height += (height > 0 ? after + look.before : 0) +
            lines(static_cast<double>(line.size()), inLine(characters, look.fontSize, look.indent)) * lineHeight(look);
        after = look.after;
    }
    close();
    return height;
}

}
