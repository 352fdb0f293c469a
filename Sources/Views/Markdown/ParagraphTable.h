#pragma once

#include "Paragraph.h"

#include <QFont>

#include <array>

namespace Korvi {

// Lengths for plain text of 13 pixels.
struct ParagraphLook {
    Paragraph::Kind kind;
    double fontSize;
    QFont::Weight weight;
    double lineSpacing; // under each line
    double before;
    double after;
    double firstIndent; // of the first line
    double indent;      // of all others
};

// In the order of Paragraph::Kind.
inline constexpr std::array paragraphLooks{
    ParagraphLook{Paragraph::Kind::header1, 20, QFont::Bold, 4, 12, 4, 0, 0},
    ParagraphLook{Paragraph::Kind::header2, 17, QFont::DemiBold, 4, 10, 4, 0, 0},
    ParagraphLook{Paragraph::Kind::header3, 15, QFont::DemiBold, 4, 8, 3, 0, 0},
    ParagraphLook{Paragraph::Kind::header4, 14, QFont::Medium, 4, 6, 2, 0, 0},
    ParagraphLook{Paragraph::Kind::body, 13, QFont::Normal, 5, 0, 12, 0, 0},
    ParagraphLook{Paragraph::Kind::listItem, 13, QFont::Normal, 5, 0, 8, 6, 28},
    ParagraphLook{Paragraph::Kind::emojiItem, 13, QFont::Normal, 5, 0, 8, 6, 6},
    ParagraphLook{Paragraph::Kind::numberedItem, 13, QFont::Normal, 5, 0, 8, 4, 32},
};

constexpr const ParagraphLook& lookOf(Paragraph::Kind kind) {
    return paragraphLooks[static_cast<std::size_t>(kind)];
}

}
