#pragma once

#include <QString>

#include <vector>

namespace Korvi::Markdown {

struct TextPart {
    QString content; // a formula without its dollar signs
    bool isLatex = false;

    bool operator==(const TextPart&) const = default;
};

enum class Style { base, bold, italic, code };

// A stretch of text in one style, without markers.
struct Run {
    QString text;
    Style style = Style::base;

    bool operator==(const Run&) const = default;
};

// Splits a paragraph at its "$...$" formulas. A dollar sign that nothing closes stays text.
std::vector<TextPart> parseInlineLatex(QStringView text);
bool hasInlineLatex(QStringView text); // whether one of these is a formula

// Without the last "**", "`" or "*" if nothing closes it: a marker that is still open is not shown while text streams.
QString stripUnclosedMarkers(const QString& text);

// The beginning of a text that gives the same runs whatever follows it, and leaves the rest to be parsed alone: every
// marker in it has found its partner, and it ends in a plain character.
struct SettledInline {
    qsizetype length = 0;
    qsizetype runs = 0;  // whole ones in it
    qsizetype inRun = 0; // characters of the one behind them, which has the base style
};

// Bold, italic and code. No run is empty, neighbours of the base style are one. Links are not parsed.
std::vector<Run> parseInlineMarkdown(const QString& text, SettledInline* settled = nullptr);

}
