#pragma once

#include "LineParser.h"

namespace Korvi::Markdown {

// Lines that are a block by themselves. All take a line, or a whole paragraph, without blanks at its ends.

struct HeaderForm {
    int level;
    QStringView content;
};
std::optional<HeaderForm> headerForm(QStringView trimmed);

std::optional<QStringView> listItemForm(QStringView trimmed); // the content

struct NumberedForm {
    qint64 number;
    QStringView content;
};
std::optional<NumberedForm> numberedForm(QStringView trimmed);

// "![alt](url)"
struct ImageForm {
    QStringView alt;
    QStringView url;

    Block::Image toImage() const;
};
std::optional<ImageForm> imageForm(QStringView trimmed);

// Which of these a line is, or an item that begins with an emoji.
std::optional<BlockPlace::Kind> kindOfLine(QStringView trimmed);

// A paragraph with images in it becomes several blocks.
void appendParagraph(const QString& content, std::vector<Block>& blocks);

}
