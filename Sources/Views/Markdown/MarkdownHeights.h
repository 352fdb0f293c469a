#pragma once

#include "ParagraphTable.h"

#include <QStringView>

// How much room Markdown takes, roughly; pixels for text of 13 pixels.
namespace Korvi::MarkdownHeights {

constexpr double codeLine = 20;
constexpr double aroundCode = 68; // its header and padding
constexpr double tableRow = 38;
constexpr double formula = 56;
constexpr double diagram = 320;
constexpr double picture = 240;
constexpr double card = 48;
constexpr double gap = 12; // around what is not text

// How many characters of that size stand in a line of `characters` plain ones, before a word moves to the next one.
double inLine(double characters, double fontSize, double indent);
double lines(double length, double inLine);
double lineHeight(const ParagraphLook& look);

// Of a whole text, told by its lines alone.
double of(QStringView markdown, double characters);

}
