#include "CodeParts.h"

#include <algorithm>

namespace Korvi {

namespace {

// What a text document takes for the end of a line, as the line feed that stands for it; one character for each, so
// that a position in the text is one in the document.
QString asShown(QStringView code, QChar before) {
    QString shown;
    shown.reserve(code.size());
    for (const QChar unit : code) {
        switch (unit.unicode()) {
        case u'\n':
            if (before != u'\r')
                shown += unit;
            break;
        case u'\r':
        case QChar::ParagraphSeparator: shown += u'\n'; break;
        case 0xfdd0: // borders of frames in a document
        case 0xfdd1: shown += QChar(QChar::ReplacementCharacter); break;
        default: shown += unit;
        }
        before = unit;
    }
    return shown;
}

bool isWide(QChar unit) {
    const char16_t c = unit.unicode();
    return (c >= 0x2e80 && c < 0xd7b0) || (c >= 0xf900 && c < 0xfb00) || (c >= 0xff00 && c <= 0xff60);
}

}

void CodeParts::setCode(const QString& code) {
    if (code == m_code)
        return;
    const bool grew = !m_code.isEmpty() && code.startsWith(m_code);
    const QStringView added = grew ? QStringView(code).sliced(m_code.size()) : QStringView(code);
    const QString shown = asShown(added, grew ? m_code.back() : QChar());
    if (!grew) {
        m_colouring = CodeColouring(m_language);
        m_columns = m_lastColumns = 0;
        m_isShownAsIs = true;
    }
    m_isShownAsIs = m_isShownAsIs && shown == added;
    m_code = code;
    measure(shown);
    show(m_isShownAsIs ? code : grew ? text() + shown : shown);
    emit codeChanged();
}

void CodeParts::setLanguage(const QString& language) {
    if (language == m_language)
        return;
    m_language = language;
    m_colouring = CodeColouring(m_language);
    if (m_isComplete) {
        colour(text());
        emit recoloured(0);
    }
    emit languageChanged();
}

void CodeParts::setOpen(bool open) {
    if (open == m_isOpen)
        return;
    m_isOpen = open;
    if (m_isComplete)
        colour(text());
    emit isOpenChanged();
}

void CodeParts::componentComplete() {
    m_isComplete = true;
    colour(text());
}

void CodeParts::show(const QString& shown) {
    if (m_isComplete)
        colour(shown); // before the parts ask for it
    setText(shown);
}

void CodeParts::colour(const QString& shown) {
    const auto extent = m_isOpen ? CodeColouring::Extent::wholeLines : CodeColouring::Extent::everything;
    const qsizetype from = m_colouring.advance(shown, extent);
    if (from < text().size())
        emit recoloured(from);
}

void CodeParts::measure(QStringView added) {
    const int before = m_columns;
    for (const QChar unit : added) {
        if (unit == u'\n')
            m_lastColumns = 0;
        else if (unit == u'\t')
            m_lastColumns += tabColumns - m_lastColumns % tabColumns;
        else
            m_lastColumns += isWide(unit) ? 2 : 1;
        m_columns = std::max(m_columns, m_lastColumns);
    }
    if (m_columns != before)
        emit columnsChanged();
}

}
