#pragma once

#include <QColor>
#include <QString>

namespace Korvi::TableCell {

// The text of a cell as it is read: without TeX noise and inline markers.
QString shownText(const QString& markdown);

struct Markup {
    QString text;
    bool isRich = false; // HTML; otherwise plain text
};

Markup markup(const QString& markdown, const QString& codeFamily, const QColor& code, const QColor& codeBackground);

}
