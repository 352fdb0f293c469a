#pragma once

#include <QString>

#include <vector>

namespace Korvi {

// One paragraph of an answer as it is drawn.
struct Paragraph {
    enum class Kind { header1, header2, header3, header4, body, listItem, emojiItem, numberedItem };
    enum class Style { base, bold, italic, code, marker, formula };

    struct Piece {
        QString text; // of a formula its TeX, without dollar signs
        Style style = Style::base;

        qsizetype length() const { return style == Style::formula ? 1 : text.size(); } // UTF-16 units as drawn
        bool operator==(const Piece&) const = default;
    };

    Kind kind = Kind::body;
    bool continues = false; // the rest of one that was too long to be drawn at once
    std::vector<Piece> pieces;

    bool isListItem() const { return kind >= Kind::listItem; }
    qsizetype length() const;
    // With each formula as one object replacement character.
    QString shown() const;
    // What is read of it between two places: formulas as TeX between dollar signs, a short marker.
    QString read(qsizetype from, qsizetype to) const;

    bool operator==(const Paragraph&) const = default;
};

// How many characters of a beginning both have in common, drawn alike.
qsizetype commonLength(const Paragraph& a, const Paragraph& b);

// What stands between two paragraphs where they are read one after the other.
QString separator(const Paragraph& before, const Paragraph& after);

// The space from one paragraph to the next, for text of 13 pixels.
double spaceBetween(const Paragraph& before, const Paragraph& after);

}
