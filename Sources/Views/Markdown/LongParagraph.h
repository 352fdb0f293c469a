#pragma once

#include "Paragraph.h"

namespace Korvi {

// A paragraph with formulas that is drawn in several parts. It is made once for all of them, and each is found without
// going through what is before it: a paragraph of a megabyte has hundreds.
class LongParagraph {
public:
    // Which one of an answer it is.
    struct Place {
        int source = 0;
        int segment = 0;

        bool operator==(const Place&) const = default;
    };

    LongParagraph(const Place& place, Paragraph whole);

    const Place& place() const { return m_place; }
    const Paragraph& whole() const { return m_whole; }
    qsizetype length() const { return m_begins.back(); }
    // The pieces between two places as a paragraph that continues, unless it begins at 0.
    Paragraph sliced(qsizetype from, qsizetype to) const;

private:
    Place m_place;
    Paragraph m_whole;
    std::vector<qsizetype> m_begins; // of the pieces, and the end of the last
};

// How many characters are drawn as before; 0 unless it is the same one of the answer.
qsizetype commonLength(const LongParagraph& before, const LongParagraph& now);

}
