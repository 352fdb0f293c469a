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

void CodeParts::setCode(const QVariant& value) {
    const SharedText code = m_code.becoming(value);
    if (code == m_code)
        return;
    const bool grew = !m_code.isEmpty() && code.continues(m_code);
    const QStringView added = grew ? code.view().sliced(m_code.size()) : code.view();
    const QString addedShown = asShown(added, grew ? m_code.view().back() : QChar());
    if (!grew) {
        m_colouring = CodeColouring(m_language);
        m_columns = m_lastColumns = 0;
        m_isShownAsIs = true;
    }
    m_isShownAsIs = m_isShownAsIs && addedShown == added;
    SharedText text = m_isShownAsIs ? code : grew ? shown() : SharedText();
    if (!m_isShownAsIs)
        text.append(addedShown);
    m_code = code;
    measure(addedShown);
    if (m_isComplete)
        colour(text.view()); // before the parts ask for it
    show(text);
    emit codeChanged();
}

void CodeParts::setLanguage(const QString& language) {
    if (language == m_language)
        return;
    m_language = language;
    m_colouring = CodeColouring(m_language);
    if (m_isComplete) {
        colour(shown().view());
        emit recoloured(0);
    }
    emit languageChanged();
}

void CodeParts::setOpen(bool open) {
    if (open == m_isOpen)
        return;
    m_isOpen = open;
    if (m_isComplete)
        colour(shown().view());
    emit isOpenChanged();
}

void CodeParts::componentComplete() {
    m_isComplete = true;
    colour(shown().view());
}

void CodeParts::colour(QStringView text) {
    const auto extent = m_isOpen ? CodeColouring::Extent::wholeLines : CodeColouring::Extent::everything;
    const qsizetype from = m_colouring.advance(text, extent);
    if (from < shown().size())
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
