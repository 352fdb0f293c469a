#pragma once

#include "Block.h"

namespace Korvi::Markdown {

// A stretch of a text by its places, so that it stays right while the text grows.
struct Place {
    qsizetype from = 0;
    qsizetype to = 0;

    bool isEmpty() const { return from == to; }
    QStringView in(QStringView text) const { return text.sliced(from, to - from); }
    bool operator==(const Place&) const = default;
};

// Where a block stands in the text, without its contents. Those depend on nothing but the text in `lines`.
struct BlockPlace {
    enum class Kind : quint8 {
        header,
        listItem,
        numberedListItem,
        emojiItem,
        code,
        formulaLine,
        formula,
        image,
        table,
        paragraph
    };

    Kind kind = Kind::paragraph;
    bool isClosed = true; // of a formula: it has its closing "$$"
    Place lines;          // without the last new line; of code from its opening fence
    // Code: its last part. Table: its separator line. Formulas: what is between the dollar signs, untrimmed.
    Place inner{};
    qsizetype firstLineEnd = 0; // of a formula that may go on in other lines
    // Code that formulas interrupt: which of the parser's code parts come before `inner`.
    qsizetype firstPart = 0;
    qsizetype lastPart = 0;

    bool operator==(const BlockPlace&) const = default;
};

// Finds the blocks of a text line by line. Its state is small and holds places only: a copy of it is a bookmark.
class LineParser {
public:
    // What is found goes to the ends of these. When going back to a bookmark, the caller cuts `foundBlocks`; what
    // `foundParts` has too much is overwritten.
    LineParser(std::vector<BlockPlace>& foundBlocks, std::vector<Place>& foundParts)
        : blocks(&foundBlocks)
        , codeParts(&foundParts) {}

    // `line` is without its new line. Lines come in order, each once.
    void read(QStringView text, Place line);
    // There are no more lines: what is open ends here.
    void finish();
    // Before that: whether code or a formula waits for what closes it.
    bool isOpen() const { return mode == Mode::formula || inCode; }

private:
    enum class Mode : quint8 { plain, heldPipe, table, formula };

    void readPlain(QStringView text, Place line);
    void readFence(Place line);
    void beginFormula(QStringView text, Place line, QStringView trimmed);
    void endFormula(qsizetype innerTo, bool isClosed);
    void endTable();
    void endCode(qsizetype to);
    void addParagraphLine(Place line);
    void flushParagraph();

    std::vector<BlockPlace>* blocks;
    std::vector<Place>* codeParts;
    Mode mode = Mode::plain;
    bool inCode = false;
    Place paragraph; // empty if there is none
    BlockPlace open; // the formula or table, or the line that may become a table's header
    BlockPlace code; // the open fence: it stays open while a formula is read
    qsizetype partCount = 0;
    qsizetype textEnd = 0; // of what was read
};

// What stands behind the three backticks of code's opening fence.
std::optional<QString> languageAt(QStringView text, const BlockPlace& code);

// The lines of a paragraph from some place in it on, joined. Of the first line its beginning is there, or not.
struct ParagraphRest {
    struct Line {
        qsizetype from;  // in the content
        qsizetype place; // in the text
    };
    QString content;
    std::vector<Line> lines;

    // Where in the text the first `length` characters end, of which the last is none of a new line's.
    qsizetype placeOf(qsizetype length) const;
};

ParagraphRest restOfParagraph(QStringView text, Place rest, bool isWhole);

// Appends the contents of what stands at a place. A paragraph may become none, or several blocks.
void appendBlocks(
    QStringView text, const BlockPlace& place, const std::vector<Place>& codeParts, std::vector<Block>& blocks);

}
