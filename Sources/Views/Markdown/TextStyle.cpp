#include "TextStyle.h"

#include "ParagraphTable.h"

#include <QFontMetricsF>

#include <algorithm>
#include <cmath>

namespace Korvi {

namespace {

constexpr double smallestCode = 11; // pixels, beside plain text of 13
constexpr float markerAlpha = 0.8F;

}

double TextStyle::fontSize(Paragraph::Kind kind) const {
    return std::round(scaled(lookOf(kind).fontSize));
}

QTextCharFormat TextStyle::charFormat(Paragraph::Kind kind, Paragraph::Style style) const {
    const ParagraphLook& look = lookOf(kind);
    QTextCharFormat format;
    // Explicit throughout: the document has no idea of its item's font until the item is laid out.
    format.setFontFamilies({m_family});
    format.setProperty(QTextFormat::FontPixelSize, static_cast<int>(fontSize(kind)));
    format.setFontWeight(look.weight);
    format.setForeground(m_color);
    switch (style) {
    case Paragraph::Style::base:
    case Paragraph::Style::formula: break;
    case Paragraph::Style::bold: format.setFontWeight(QFont::Bold); break;
    case Paragraph::Style::italic: format.setFontItalic(true); break;
    case Paragraph::Style::code: {
        const double size = std::round(scaled(std::max(look.fontSize - 1, smallestCode)));
        format.setFontFamilies({m_monoFamily});
        format.setProperty(QTextFormat::FontPixelSize, static_cast<int>(size));
        format.setFontWeight(QFont::Normal);
        format.setFontStyleStrategy(QFont::PreferNoShaping); // no ligatures
        format.setForeground(m_codeColor);
        break;
    }
    case Paragraph::Style::marker: {
        QColor color = m_color;
        color.setAlphaF(color.alphaF() * markerAlpha);
        format.setForeground(color);
        if (kind == Paragraph::Kind::numberedItem)
            format.setFontWeight(QFont::Medium);
        break;
    }
    }
    return format;
}

QTextCharFormat TextStyle::markerEndFormat(Paragraph::Kind kind, const QString& marker) const {
    QTextCharFormat format = charFormat(kind, Paragraph::Style::marker);
    const ParagraphLook& look = lookOf(kind);
    const double room = scaled(look.indent - look.firstIndent) - QFontMetricsF(format.font()).horizontalAdvance(marker);
    if (room > 0) {
        format.setFontLetterSpacingType(QFont::AbsoluteSpacing);
        format.setFontLetterSpacing(room);
    }
    return format;
}

QTextBlockFormat TextStyle::blockFormat(const Paragraph& paragraph, const Paragraph* above) const {
    const ParagraphLook& look = lookOf(paragraph.kind);
    QTextBlockFormat format;
    format.setLineHeight(std::round(scaled(look.lineSpacing)), QTextBlockFormat::LineDistanceHeight);
    // All space stands above a paragraph, so that one that is added changes none that is there.
    format.setTopMargin(above ? std::round(scaled(spaceBetween(*above, paragraph))) : 0);
    format.setLeftMargin(scaled(look.indent));
    if (!paragraph.continues)
        format.setTextIndent(scaled(look.firstIndent - look.indent));
    return format;
}

}
