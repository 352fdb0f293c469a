#include "SegmentList.h"

namespace Korvi::Markdown {

Piece pieceOf(Block block) {
    if (auto text = textBlockOf(block))
        return std::move(*text);
    return block;
}

void SegmentList::append(Piece piece) {
    if (auto* block = std::get_if<Block>(&piece)) {
        segments.emplace_back(SpecialSegment{std::move(*block)});
        return;
    }
    if (!openText())
        segments.emplace_back(TextSegment{});
    openText()->blocks.push_back(std::move(std::get<TextBlock>(piece)));
}

Piece SegmentList::takeLast() {
    if (TextSegment* text = openText()) {
        TextBlock last = std::move(text->blocks.back());
        text->blocks.pop_back();
        if (text->blocks.empty())
            segments.pop_back();
        return last;
    }
    Block block = std::move(std::get<SpecialSegment>(segments.back()).block);
    segments.pop_back();
    return block;
}

TextSegment* SegmentList::openText() {
    return segments.empty() ? nullptr : std::get_if<TextSegment>(&segments.back());
}

}
