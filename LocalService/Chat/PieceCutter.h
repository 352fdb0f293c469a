#pragma once

#include "Chat/Piece.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace korvi::service {

/// Cuts a stream of deltas into pieces that a client can receive twice without harm.
///
/// The client recognises text that it already has by its content: it drops a text of ten or more characters that stands
/// anywhere in the answer so far, and reasoning of that length that the reasoning so far ends with; it appends anything
/// shorter. So a piece is long enough to be recognised (16 grapheme clusters) and is new when it is first sent. One
/// piece is held back until the next one is ready, so that the last words of an answer can join it instead of becoming
/// a piece that is too short to be recognised.
class PieceCutter {
public:
    static constexpr std::size_t minimumClusters = 16;
    /// What the client appends whatever it is, in the longest of the usual ways to count.
    static constexpr std::size_t alwaysAppended = 9;

    /// `delta` is valid UTF-8; it may end inside a grapheme cluster.
    std::vector<Piece> add(PieceKind kind, std::string_view delta);
    /// The rest, at the end of the answer. The cutter can go on afterwards as if nothing had been held.
    std::vector<Piece> finish();
    /// The client's text has grown by something that was not cut here: the picture of a tool.
    void addShown(std::string_view text) { shownText_ += text; }

private:
    void advanceBorders();
    void tryCut(std::vector<Piece>& out);
    void closeRun(std::vector<Piece>& out);
    void closePending(std::vector<Piece>& out);
    /// Reasoning only: what is held and what is pending would together be taken for the end of what came before.
    bool isSuffixTogether();
    void resetScan();
    std::string& shown() { return kind_ == PieceKind::text ? shownText_ : shownThinking_; }
    bool isRepeat(std::string_view shownPiece);

    PieceKind kind_ = PieceKind::text;
    std::string pending_;
    std::string held_;
    // What the client's answer holds once everything cut so far has arrived.
    std::string shownText_;
    std::string shownThinking_;

    // The scan over `pending_`: only new bytes are looked at, however long a repetition makes it grow.
    std::size_t scanned_ = 0;
    std::size_t lastClusterStart_ = 0;
    std::size_t clusters_ = 0;
    std::int32_t previousPoint_ = -1;
    std::int32_t breakState_ = 0;
    bool hasBackslash_ = false;
    // No match of a longer text can begin before the first match of its beginning, and of that so many bytes are known.
    std::size_t searchFrom_ = 0;
    std::size_t matched_ = 0;
};

/// How the client shows a text: some models leave escape residue in it, which the client turns into what was meant.
std::string asShown(std::string_view text);

}
