#include "FormulaFonts.h"

namespace Korvi {

FormulaFonts::FormulaFonts(QString folder)
    : m_folder(std::move(folder))
    , m_sizes(64) {}

const QRawFont& FormulaFonts::font(const QString& name, qreal pixelSize) {
    const auto key = std::pair(name, qRound(pixelSize * 64));
    if (const QRawFont* known = m_sizes.object(key))
        return *known;
    auto* sized = new QRawFont(face(name));
    if (sized->isValid())
        sized->setPixelSize(pixelSize);
    m_sizes.insert(key, sized);
    return *sized;
}

const QRawFont& FormulaFonts::face(const QString& name) {
    const auto known = m_faces.constFind(name);
    if (known != m_faces.constEnd())
        return *known;
    // Names come from the page: only what can be a face is looked for.
    const bool isName = std::ranges::all_of(
        name, [](QChar c) { return c == u'_' || c == u'-' || (c.unicode() < 128 && c.isLetterOrNumber()); });
    QRawFont font;
    if (isName)
        font = QRawFont(m_folder + u'/' + name + QStringLiteral(".ttf"), 16, QFont::PreferVerticalHinting);
    return *m_faces.insert(name, font);
}

}
