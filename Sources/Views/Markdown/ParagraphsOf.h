#pragma once

#include "Paragraph.h"
#include "Pipeline/Segment.h"

namespace Korvi {

// The paragraphs of a segment that is drawn as text: a text segment, or a paragraph with formulas in it.
bool isText(const Markdown::Segment& segment);
int paragraphCount(const Markdown::Segment& segment);
Paragraph paragraphOf(const Markdown::Segment& segment, int number);
// Some characters of one of a text segment.
Paragraph paragraphOf(const Markdown::Segment& segment, int number, qsizetype from, qsizetype to);
Paragraph::Kind paragraphKindOf(const Markdown::Segment& segment, int number);
qsizetype paragraphLength(const Markdown::Segment& segment, int number); // as drawn

}
