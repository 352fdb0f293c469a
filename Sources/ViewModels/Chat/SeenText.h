#pragma once

#include <QString>

#include <vector>

namespace Korvi {

// Text that only grows, with a quick answer to "does it hold this piece?": nearly every new piece is ruled out by a
// set of the hashes of all windows of ten characters, so that asking costs the length of the piece, not of the text.
class SeenText {
public:
    static constexpr qsizetype window = 10; // UTF-16 units; shorter pieces are searched for

    const QString& text() const { return m_text; }
    void reset(const QString& text);
    void append(const QString& piece);
    bool contains(const QString& piece) const;

private:
    void addWindows(qsizetype from);
    std::size_t slot(QStringView piece) const;

    QString m_text;
    std::vector<bool> m_windows = std::vector<bool>(1 << 13); // a power of two, kept sparse
};

}
