#include "LineParser.h"

#include "Characters.h"
#include "LineForms.h"
#include "TableText.h"

namespace Korvi::Markdown {

using namespace Qt::Literals;
using Kind = BlockPlace::Kind;

namespace {

constexpr QStringView dollars = u"$$";
constexpr QStringView fence = u"```";

bool isTableLine(QStringView line) {
    return trimmedBlanks(line).startsWith(u'|');
}

// Two characters less, whole ones.
QStringView withoutLastTwo(QStringView text) {
    for (int i = 0; i < 2; ++i) {
        const bool isPair = text.size() >= 2 && text.back().isLowSurrogate() && text[text.size() - 2].isHighSurrogate();
        text.chop(isPair ? 2 : 1);
    }
    return text;
}

}

void LineParser::read(QStringView text, Place line) {
    textEnd = line.to;
    const QStringView raw = line.in(text);
    switch (mode) {
    case Mode::formula:
        if (const QStringView trimmed = trimmedBlanks(raw); trimmed.endsWith(dollars))
            endFormula(trimmed.end() - text.begin() - dollars.size(), true);
        return;
    case Mode::heldPipe:
        if (isTableLine(raw) && raw.contains(u'-')) {
            flushParagraph();
            mode = Mode::table;
            open.inner = line;
            open.lines.to = line.to;
            return;
        }
        mode = Mode::plain;
        addParagraphLine(open.lines);
        break;
    case Mode::table:
        if (isTableLine(raw)) {
            open.lines.to = line.to;
            return;
        }
        endTable();
        break;
    case Mode::plain: break;
    }
    readPlain(text, line);
}

void LineParser::readPlain(QStringView text, Place line) {
    const QStringView raw = line.in(text);
    const QStringView trimmed = trimmedBlanks(raw);
    // Before all else, inside an open fence too.
    if (trimmed.startsWith(dollars)) {
        beginFormula(text, line, trimmed);
    } else if (raw.startsWith(fence)) {
        readFence(line);
    } else if (inCode) {
        return;
    } else if (trimmed.isEmpty()) {
        flushParagraph();
    } else if (trimmed.startsWith(u'|')) {
        mode = Mode::heldPipe;
        open = {.kind = Kind::table, .lines = line};
    } else if (const auto kind = kindOfLine(trimmed)) {
        flushParagraph();
        blocks->push_back({.kind = *kind, .lines = line});
    } else {
        addParagraphLine(line);
    }
}

void LineParser::finish() {
    switch (mode) {
    case Mode::formula: endFormula(textEnd, false); break;
    case Mode::heldPipe: addParagraphLine(open.lines); break;
    case Mode::table: endTable(); break;
    case Mode::plain: break;
    }
    if (inCode)
        endCode(textEnd);
    flushParagraph();
}

void LineParser::readFence(Place line) {
    if (inCode) {
        endCode(line.from);
        return;
    }
    flushParagraph();
    inCode = true;
    code = {.kind = Kind::code,
        .lines = line,
        .inner = {line.to + 1, line.to + 1},
        .firstPart = partCount,
        .lastPart = partCount};
}

void LineParser::endCode(qsizetype to) {
    inCode = false;
    // The text may end with the line before the first one of the code.
    code.inner.from = std::min(code.inner.from, textEnd);
    code.inner.to = std::max(code.inner.from, to);
    code.lines.to = textEnd;
    blocks->push_back(code);
}

void LineParser::beginFormula(QStringView text, Place line, QStringView trimmed) {
    flushParagraph();
    if (inCode) {
        codeParts->resize(std::size_t(partCount));
        codeParts->push_back({code.inner.from, line.from});
        code.lastPart = ++partCount;
    }
    const QStringView rest = trimmed.sliced(dollars.size());
    const qsizetype from = rest.begin() - text.begin();
    open = {.kind = Kind::formula, .lines = line, .inner = {from, from}, .firstLineEnd = line.to};
    if (!rest.contains(dollars)) {
        mode = Mode::formula;
        return;
    }
    open.kind = Kind::formulaLine;
    endFormula(from + withoutLastTwo(rest).size(), true);
}

void LineParser::endFormula(qsizetype innerTo, bool isClosed) {
    mode = Mode::plain;
    open.inner.to = innerTo;
    open.isClosed = isClosed;
    open.lines.to = textEnd;
    blocks->push_back(open);
    if (inCode)
        code.inner.from = textEnd + 1;
}

void LineParser::endTable() {
    mode = Mode::plain;
    blocks->push_back(open);
}

void LineParser::addParagraphLine(Place line) {
    if (paragraph.isEmpty())
        paragraph = line;
    else
        paragraph.to = line.to;
}

void LineParser::flushParagraph() {
    if (!paragraph.isEmpty())
        blocks->push_back({.kind = Kind::paragraph, .lines = paragraph});
    paragraph = {};
}

namespace {

// The first line and the one that closes it are taken without blanks at their ends, those between as they are.
QString formulaText(QStringView text, const BlockPlace& place) {
    const Place& inner = place.inner;
    if (place.firstLineEnd >= inner.to)
        return inner.in(text).trimmed().toString();
    const qsizetype lastLine = place.isClosed ? inner.from + inner.in(text).lastIndexOf(u'\n') + 1 : place.firstLineEnd;
    const QStringView last = text.sliced(lastLine, inner.to - lastLine);
    QString formula = trimmedBlanks(text.sliced(inner.from, place.firstLineEnd - inner.from)).toString();
    formula.append(text.sliced(place.firstLineEnd, lastLine - place.firstLineEnd));
    formula.append(place.isClosed ? trimmedBlanks(last) : last);
    return std::move(formula).trimmed();
}

Block codeBlock(QStringView text, const BlockPlace& place, const std::vector<Place>& parts) {
    QString code;
    for (qsizetype part = place.firstPart; part < place.lastPart; ++part)
        code += parts[std::size_t(part)].in(text);
    code += place.inner.in(text);
    code = trimmedNewLines(code).toString();
    const std::optional<QString> language = languageAt(text, place);
    if (language && language->toLower() == "mermaid"_L1)
        return {Block::MermaidBlock{code}};
    return {Block::CodeBlock{language, code}};
}

Block tableBlock(QStringView text, const BlockPlace& place) {
    const QStringView header = place.lines.in(text).first(place.inner.from - 1 - place.lines.from);
    Block::Table table{
        .headers = parseTableRow(header), .rows = {}, .alignments = parseTableAlignments(place.inner.in(text))};
    if (place.inner.to < place.lines.to) {
        for (const QStringView row :
            text.sliced(place.inner.to + 1, place.lines.to - place.inner.to - 1).tokenize(u'\n'))
            table.rows.push_back(parseTableRow(row));
    }
    return {std::move(table)};
}

}

std::optional<QString> languageAt(QStringView text, const BlockPlace& code) {
    const QStringView lines = code.lines.in(text);
    const qsizetype lineEnd = lines.indexOf(u'\n');
    const QStringView language = lines.first(lineEnd < 0 ? lines.size() : lineEnd).sliced(fence.size()).trimmed();
    return language.isEmpty() ? std::nullopt : std::optional(language.toString());
}

qsizetype ParagraphRest::placeOf(qsizetype length) const {
    const auto behind = std::find_if(lines.begin(), lines.end(), [&](const Line& line) { return line.from >= length; });
    const Line& line = *std::prev(behind);
    return line.place + length - line.from;
}

ParagraphRest restOfParagraph(QStringView text, Place place, bool isWhole) {
    ParagraphRest rest;
    QString& content = rest.content;
    content.reserve(place.to - place.from);
    bool isBegun = !isWhole; // something stands before this line
    for (const QStringView line : place.in(text).tokenize(u'\n')) {
        const bool goesOn = !isWhole && rest.lines.empty();
        QStringView shown = trimmedBlanks(line);
        if (goesOn && !shown.isEmpty())
            shown = line.first(shown.end() - line.begin());
        if (isBegun && !goesOn)
            content.append(u' ');
        rest.lines.push_back({content.size(), shown.begin() - text.begin()});
        content.append(shown);
        isBegun = isBegun || !content.isEmpty();
    }
    qsizetype end = content.size();
    while (end > 0 && content[end - 1].isSpace())
        --end;
    content.truncate(end);
    if (isWhole) {
        const qsizetype lead =
            std::find_if(content.begin(), content.end(), [](QChar c) { return !c.isSpace(); }) - content.begin();
        content.remove(0, lead);
        for (ParagraphRest::Line& line : rest.lines)
            line.from -= lead;
    }
    return rest;
}

void appendBlocks(
    QStringView text, const BlockPlace& place, const std::vector<Place>& codeParts, std::vector<Block>& blocks) {
    const QStringView trimmed = trimmedBlanks(place.lines.in(text));
    switch (place.kind) {
    case Kind::header: {
        const HeaderForm form = *headerForm(trimmed);
        blocks.push_back({Block::Header{form.level, form.content.toString()}});
        break;
    }
    case Kind::listItem: blocks.push_back({Block::ListItem{listItemForm(trimmed)->toString()}}); break;
    case Kind::numberedListItem: {
        const NumberedForm form = *numberedForm(trimmed);
        blocks.push_back({Block::NumberedListItem{form.number, form.content.toString()}});
        break;
    }
    case Kind::emojiItem: blocks.push_back({Block::ListItem{trimmed.toString()}}); break;
    case Kind::code: blocks.push_back(codeBlock(text, place, codeParts)); break;
    case Kind::formulaLine: blocks.push_back({Block::LatexBlock{place.inner.in(text).toString()}}); break;
    case Kind::formula: blocks.push_back({Block::LatexBlock{formulaText(text, place)}}); break;
    case Kind::image: blocks.push_back({imageForm(trimmed)->toImage()}); break;
    case Kind::table: blocks.push_back(tableBlock(text, place)); break;
    case Kind::paragraph: appendParagraph(restOfParagraph(text, place.lines, true).content, blocks); break;
    }
}

}
