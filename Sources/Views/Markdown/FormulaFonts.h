#pragma once

#include <QCache>
#include <QHash>
#include <QRawFont>

namespace Korvi {

// The fonts that formulas are laid out with, from the files of the bundle, without making them fonts of the system.
class FormulaFonts {
public:
    // Letters that those fonts lack, Cyrillic ones for instance, come from this one, so much smaller.
    static constexpr char otherFamily[] = "Inter";
    static constexpr qreal otherScale = 0.8;

    // `folder` holds "KaTeX_Main-Regular.ttf" and the others.
    explicit FormulaFonts(QString folder);

    // Not valid when there is no such file.
    const QRawFont& font(const QString& face, qreal pixelSize);

private:
    const QRawFont& face(const QString& name);

    QString m_folder;
    QHash<QString, QRawFont> m_faces;                  // as loaded
    QCache<std::pair<QString, int>, QRawFont> m_sizes; // pixels * 64
};

}
