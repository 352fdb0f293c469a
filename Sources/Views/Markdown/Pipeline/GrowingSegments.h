#pragma once

#include "LineParser.h"
#include "SegmentChange.h"

namespace Korvi::Markdown {

// The segments of a cleaned text whose end changes. Only the blocks from the first changed line on are found again, and
// of those only the ones that became others are made again. What is open at the end (code, a formula, a table, a
// paragraph) is made longer in place.
class GrowingSegments {
public:
    GrowingSegments();
    GrowingSegments(const GrowingSegments&) = delete;
    GrowingSegments& operator=(const GrowingSegments&) = delete;

    // `text` is as at the last call in its first `kept` units.
    Change update(const QString& text, qsizetype kept);

    const std::vector<Segment>& all() const { return segments.all(); }
    std::vector<Segment> take() { return segments.take(); }
    bool endsOpen() const { return isTailOpen; } // code or a formula waits for what closes it

private:
    struct Bookmark {
        qsizetype from; // the beginning of the next line to read
        std::size_t places;
        LineParser parser;
    };
    // The beginning of the last paragraph that nothing can change any more: there is no formula or image in it, and its
    // inline markers are closed. It ends within a line, with a character that is shown.
    struct Settled {
        qsizetype from = -1;      // where the paragraph begins
        qsizetype to = 0;         // in the text
        qsizetype content = 0;    // how long it is in the block's content,
        qsizetype characters = 0; // and as shown
        qsizetype runs = 0;       // the last one is of the base style and goes on behind it
        qsizetype lastRun = 0;    // how long that one is
    };
    // The blocks of the text from the last usable bookmark on: what was there before is returned.
    std::vector<BlockPlace> findBlocks(QStringView text, qsizetype kept);
    std::vector<Piece> takePieces(std::size_t firstPlace);
    bool appendToParagraph(QStringView text, qsizetype kept, Change& change);
    std::optional<Reused> lengthen(
        QStringView text, const BlockPlace& old, const BlockPlace& now, qsizetype kept, Piece& piece);
    std::optional<Reused> lengthenText(QStringView text, const BlockPlace& now, qsizetype kept, QString& content);
    std::optional<Reused> lengthenTable(QStringView text, const BlockPlace& now, qsizetype kept, Block::Table& table);
    std::optional<Reused> lengthenParagraph(QStringView text, const BlockPlace& now, TextBlock& paragraph);
    void settle(const SettledInline& more, const std::vector<Run>& runs, bool isJoined);
    void rememberEnd(QStringView text);
    bool endsInPlainParagraph(QStringView text);
    void addBookmark(const Bookmark& bookmark);

    SegmentList segments;
    std::vector<BlockPlace> places;
    std::vector<Place> codeParts;
    std::vector<qsizetype> pieceCounts; // how many pieces each place has become
    std::vector<Bookmark> bookmarks;    // the first one, of the beginning, stays; the last is of the last line
    std::size_t bookmarkPlaces = 0;     // of the bookmark from which the last search went
    // Of the last place. Code, formula: where its trimmed text ends; table: where its last row begins. -1 if unknown.
    qsizetype openEnd = -1;
    Settled settled;
    qsizetype textSize = 0;
    bool isTailOpen = false;
    bool isPlainParagraph = false; // plain characters that come next belong to the last paragraph as they are
};

}
