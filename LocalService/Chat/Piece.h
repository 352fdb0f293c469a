#pragma once

#include <string>
#include <string_view>

namespace korvi::service {

/// The body of a `tool` piece is its frame, with addresses of files in the stored form.
enum class PieceKind { text, thinking, tool };

constexpr std::string_view nameOf(PieceKind kind) {
    switch (kind) {
    case PieceKind::text: return "text";
    case PieceKind::thinking: return "thinking";
    case PieceKind::tool: return "tool";
    }
    return "text";
}

constexpr PieceKind pieceKindOf(std::string_view name) {
    return name == "tool" ? PieceKind::tool : name == "thinking" ? PieceKind::thinking : PieceKind::text;
}

/// A part of an answer with borders that never change: what is stored as one row, sent as one frame and, if need be,
/// sent again as the same frame.
struct Piece {
    PieceKind kind = PieceKind::text;
    std::string body;

    bool operator==(const Piece&) const = default;
};

}
