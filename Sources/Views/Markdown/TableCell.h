#pragma once

#include "Pipeline/Inline.h"

#include <QColor>
#include <QFont>
#include <QString>

namespace Korvi::TableCell {

// What is shown of a cell: without TeX noise and inline markers.
std::vector<Markdown::Run> runs(const QString& markdown);

struct Markup {
    QString text;
    bool isRich = false; // HTML; otherwise plain text
    QString plain;       // what is read of it
};

Markup markup(const QString& markdown, const QFont& codeFont, const QColor& code, const QColor& codeBackground);

}
