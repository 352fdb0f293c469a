#pragma once

#include <QString>

namespace Korvi {

// A page of a Markdown text, for paper: the same blocks that the screen shows, formulas and diagrams drawn in it. When
// that is done, `document.body.dataset.ready` is "1".
QString markdownAsHtml(const QString& title, const QString& markdown);

}
