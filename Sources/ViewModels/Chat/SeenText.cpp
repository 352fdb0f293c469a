#include "Chat/SeenText.h"

#include <algorithm>

namespace Korvi {

void SeenText::reset(const QString& text) {
    m_text.clear();
    std::fill(m_windows.begin(), m_windows.end(), false);
    append(text);
}

void SeenText::append(const QString& piece) {
    const qsizetype from = std::max<qsizetype>(0, m_text.size() - window + 1);
    m_text += piece;
    const auto wanted = static_cast<std::size_t>(m_text.size()) * 16;
    if (wanted <= m_windows.size())
        return addWindows(from);
    std::size_t size = m_windows.size();
    while (size < wanted)
        size *= 4;
    m_windows.assign(size, false);
    addWindows(0);
}

bool SeenText::contains(const QString& piece) const {
    if (piece.size() >= window && !m_windows[slot(QStringView(piece).first(window))])
        return false;
    return m_text.contains(piece);
}

void SeenText::addWindows(qsizetype from) {
    for (qsizetype at = from; at + window <= m_text.size(); ++at)
        m_windows[slot(QStringView(m_text).sliced(at, window))] = true;
}

std::size_t SeenText::slot(QStringView piece) const {
    std::size_t hash = 0;
    for (const QChar character : piece)
        hash = (hash ^ character.unicode()) * 0x9E3779B97F4A7C15u;
    return (hash >> 20) & (m_windows.size() - 1);
}

}
