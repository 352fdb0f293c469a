#include "LongParagraph.h"

#include <algorithm>

namespace Korvi {

LongParagraph::LongParagraph(const Place& place, Paragraph whole)
    : m_place(place)
    , m_whole(std::move(whole)) {
    m_begins.reserve(m_whole.pieces.size() + 1);
    m_begins.push_back(0);
    for (const Paragraph::Piece& piece : m_whole.pieces)
        m_begins.push_back(m_begins.back() + piece.length());
}

Paragraph LongParagraph::sliced(qsizetype from, qsizetype to) const {
    Paragraph slice{m_whole.kind, m_whole.continues || from > 0, {}};
    const auto next = std::upper_bound(m_begins.begin(), m_begins.end(), from);
    for (auto i = static_cast<std::size_t>(std::max<std::ptrdiff_t>(next - m_begins.begin() - 1, 0));
         i < m_whole.pieces.size() && m_begins[i] < to; ++i) {
        const Paragraph::Piece& piece = m_whole.pieces[i];
        const qsizetype first = std::max(from, m_begins[i]);
        const qsizetype last = std::min(to, m_begins[i + 1]);
        if (first >= last)
            continue;
        slice.pieces.push_back(piece);
        if (piece.style != Paragraph::Style::formula)
            slice.pieces.back().text = piece.text.sliced(first - m_begins[i], last - first);
    }
    return slice;
}

qsizetype commonLength(const LongParagraph& before, const LongParagraph& now) {
    const bool same = before.place() == now.place() && before.whole().kind == now.whole().kind;
    return same ? commonLength(before.whole(), now.whole()) : 0;
}

}
