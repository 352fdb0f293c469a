// An answer that comes in pieces: at every moment its segments are those of the whole text, and each change is true.
// Long inputs are compared at their end alone, so that the time limit of the fuzzer finds what is not linear.
#include "ChangeCheck.h"
#include "Segments.h"
#include "TableText.h"

#include <cstdio>
#include <cstdlib>

using namespace Korvi::Markdown;

namespace {

constexpr qsizetype comparedLength = 600;
constexpr qsizetype comparisons = 20;
// What stays open behind a marker is read again for each piece, so a text of a megabyte comes in few.
constexpr qsizetype longLength = 65'536;
constexpr qsizetype longPieces = 16;

void require(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

void compare(const StreamingDocument& document) {
    const Cleaned cleaned = clean(document.text());
    require(document.segments() == groupBlocksIntoSegments(cleaned.text), "the segments are those of the whole text");
    require(document.citations() == cleaned.citations, "the citations are those of the whole text");
}

void useTables(const std::vector<Segment>& segments) {
    for (const Segment& segment : segments) {
        const auto* special = std::get_if<SpecialSegment>(&segment);
        if (const auto* table = special ? special->block.as<Block::Table>() : nullptr)
            tableAsTsv(*table);
    }
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    // The first byte chooses the borders of the pieces.
    std::uint32_t dice = data[0] * 2654435761U + 1;
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data + 1), qsizetype(size) - 1);
    StreamingDocument document;
    const bool isShort = text.size() <= comparedLength;
    const qsizetype least = text.size() > longLength ? text.size() / longPieces : 0;
    qsizetype compareAt = 0;
    for (qsizetype at = 0; at < text.size();) {
        dice = dice * 1664525U + 1013904223U;
        const qsizetype length =
            std::min(text.size() - at, least + qsizetype(1 + (dice >> 16) % (1U + (data[0] & 31U))));
        const std::vector<Segment> before = isShort ? document.segments() : std::vector<Segment>();
        const Change change = document.append(QStringView(text).sliced(at, length));
        at += length;
        if (isShort) {
            const QString fault = faultOf(change, before, document.segments());
            require(fault.isEmpty(), qPrintable(fault));
        }
        if (isShort && at >= compareAt) {
            compareAt = at + text.size() / comparisons;
            compare(document);
        }
    }
    compare(document);
    useTables(document.segments());
    document.settle();
    compare(document);
    return 0;
}
