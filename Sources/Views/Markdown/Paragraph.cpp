#include "Paragraph.h"

#include "ParagraphTable.h"

#include <algorithm>

namespace Korvi {

qsizetype Paragraph::length() const {
    qsizetype sum = 0;
    for (const Piece& piece : pieces)
        sum += piece.length();
    return sum;
}

QString Paragraph::shown() const {
    QString text;
    for (const Piece& piece : pieces) {
        if (piece.style == Style::formula)
            text += QChar::ObjectReplacementCharacter;
        else
            text += piece.text;
    }
    return text;
}

QString Paragraph::read(qsizetype from, qsizetype to) const {
    QString text;
    qsizetype begin = 0;
    for (const Piece& piece : pieces) {
        const qsizetype end = begin + piece.length();
        const qsizetype first = std::max(from, begin);
        const qsizetype last = std::min(to, end);
        if (first < last) {
            if (piece.style == Style::formula)
                text += u'$' + piece.text + u'$';
            else if (piece.style == Style::marker && first == begin && last == end)
                text += piece.text.trimmed() + (piece.text.trimmed().isEmpty() ? QString() : QStringLiteral(" "));
            else
                text += QStringView(piece.text).sliced(first - begin, last - first);
        }
        begin = end;
    }
    return text;
}

qsizetype commonLength(const Paragraph& a, const Paragraph& b) {
    qsizetype common = 0;
    for (std::size_t i = 0; i < std::min(a.pieces.size(), b.pieces.size()); ++i) {
        const Paragraph::Piece& one = a.pieces[i];
        const Paragraph::Piece& other = b.pieces[i];
        if (one == other) {
            common += one.length();
            continue;
        }
        // A marker is drawn as a whole.
        if (one.style != other.style || one.style == Paragraph::Style::formula || one.style == Paragraph::Style::marker)
            break;
        const auto [end, unused] =
            std::mismatch(one.text.begin(), one.text.end(), other.text.begin(), other.text.end());
        qsizetype same = end - one.text.begin();
        if (same > 0 && one.text.at(same - 1).isHighSurrogate())
            --same;
        return common + same;
    }
    return common;
}

QString separator(const Paragraph& before, const Paragraph& after) {
    if (after.continues)
        return {};
    return before.isListItem() && after.isListItem() ? QStringLiteral("\n") : QStringLiteral("\n\n");
}

double spaceBetween(const Paragraph& before, const Paragraph& after) {
    return after.continues ? 0 : lookOf(before.kind).after + lookOf(after.kind).before;
}

}
