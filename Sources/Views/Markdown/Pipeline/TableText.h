#pragma once

#include "Block.h"

namespace Korvi::Markdown {

// The cells of a line such as "| a | b |", trimmed.
QStringList parseTableRow(QStringView line);
// What a separator line such as "|:--|:-:|--:|" says of its columns.
std::vector<Alignment> parseTableAlignments(QStringView line);

// A cell's text without the TeX commands that are only noise in a table.
QString cleanLatex(QString text);

// Header and rows as tab-separated lines, for the clipboard: cells without inline markers, tabs or line feeds.
QString tableAsTsv(const Block::Table& table);

}
