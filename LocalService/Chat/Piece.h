#pragma once

#include <string>

namespace korvi::service {

enum class PieceKind { text, thinking };

/// A part of an answer with borders that never change: what is stored as one row, sent as one frame and, if need be,
/// sent again as the same frame.
struct Piece {
    PieceKind kind = PieceKind::text;
    std::string body;

    bool operator==(const Piece&) const = default;
};

}
