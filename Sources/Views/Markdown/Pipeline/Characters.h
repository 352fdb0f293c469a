#pragma once

#include <QStringView>

namespace Korvi::Markdown {

// What ends a line for "." in the patterns of the cleaners and of inline markers.
constexpr bool isLineTerminator(char16_t c) {
    return (c >= 0x0a && c <= 0x0d) || c == 0x85 || c == 0x2028 || c == 0x2029;
}

// White space within a line: tabs and the spaces of Unicode.
inline bool isBlank(QChar c) {
    return c == u' ' || c == u'\t' || (c.unicode() >= 0xa0 && c.category() == QChar::Separator_Space);
}

QStringView trimmedBlanks(QStringView text);
QStringView trimmedNewLines(QStringView text);

// Drawn as a coloured picture by itself (Emoji and Emoji_Presentation both).
bool isEmoji(char32_t scalar);
bool startsWithEmoji(QStringView text);

// Appends `piece` to `output` without what is drawn as a coloured picture, and only every other space of a run.
// `oddSpace`: whether the output ends in a space that the next one is doubled with; carries over to the next piece.
void appendWithoutEmojis(QStringView piece, QString& output, bool& oddSpace);

// Searches for a fixed text from places that only ever grow: all searches together read the text once.
template <class Needle>
class NextFinder {
public:
    NextFinder(QStringView searched, Needle wanted)
        : text(searched)
        , needle(wanted) {}

    // The first place at or after `from`, or -1.
    qsizetype find(qsizetype from) {
        if (!searchedOnce || (found >= 0 && found < from)) {
            found = from <= text.size() ? text.indexOf(needle, from) : -1;
            searchedOnce = true;
        }
        return found;
    }

private:
    QStringView text;
    Needle needle;
    qsizetype found = -1;
    bool searchedOnce = false;
};

}
