#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

#include <optional>

// SVG of strangers. Qt's reader opens what a drawing names, be it a file of this machine or a pipe, and draws whatever
// it takes; so it is given a new drawing that is written from what is harmless in the one that came.
namespace Korvi::SafeSvg {

struct Drawing {
    QByteArray svg; // shapes, texts and gradients alone, which name nothing outside
    int cost = 0;   // elements that are drawn, repeated ones each time; a long path counts as many
};

// What is not harmless is left out; nothing when there is no SVG or it would be too much to draw.
std::optional<Drawing> sanitized(const QByteArray& bytes);

// Twice as large as it means to be, but within the bounds and smaller where there is much to draw. `natural` is how large
// it means to be.
QImage rendered(const QByteArray& bytes, const QSize& bounds, QSize& natural);

}
