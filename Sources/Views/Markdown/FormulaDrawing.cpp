#include "FormulaDrawing.h"

#include "FormulaFonts.h"

#include <QGlyphRun>
#include <QJsonArray>
#include <QPainter>
#include <QRegularExpression>

#include <cmath>

namespace Korvi {

using namespace Qt::Literals;

namespace {

constexpr qreal largest = 2000; // times the font size: what is beyond was asked for to do harm

// KaTeX marks what it does not understand with this colour.
constexpr QRgb mistake = qRgb(0xcc, 0, 0);

// A colour as a browser writes it: rgb(1, 2, 3) or rgba(1, 2, 3, 0.5).
QColor colorFromCss(const QString& text) {
    static const QRegularExpression form(u"^rgba?\\((\\d+), (\\d+), (\\d+)(?:, ([\\d.]+))?\\)$"_s);
    const auto match = form.match(text);
    if (!match.hasMatch())
        return {};
    const auto part = [&](int group) { return std::min(match.captured(group).toInt(), 255); };
    QColor color(part(1), part(2), part(3));
    if (match.hasCaptured(4))
        color.setAlphaF(std::clamp(match.captured(4).toFloat(), 0.0F, 1.0F));
    return color;
}

qreal number(const QJsonValue& value) {
    return std::clamp(value.toDouble(), -largest, largest);
}

QRectF rectFromJson(const QJsonValue& value) {
    const QJsonArray numbers = value.toArray();
    if (numbers.size() != 4)
        return {};
    return {number(numbers[0]), number(numbers[1]), number(numbers[2]), number(numbers[3])};
}

QRectF scaled(const QRectF& rect, qreal size) {
    return {rect.topLeft() * size, rect.size() * size};
}

QFont otherFont(const QString& face, qreal pixelSize) {
    QFont font(QString::fromLatin1(FormulaFonts::otherFamily));
    font.setPixelSize(std::max(1, qRound(pixelSize * FormulaFonts::otherScale)));
    font.setBold(face.contains("Bold"_L1));
    font.setItalic(face.endsWith("Italic"_L1));
    return font;
}

// The text's characters, each with its place in the text.
template <class Visit>
void forEachCharacter(const QString& text, Visit visit) {
    std::size_t index = 0;
    for (qsizetype at = 0; at < text.size(); ++index) {
        const qsizetype length = text[at].isHighSurrogate() && at + 1 < text.size() ? 2 : 1;
        visit(index, text.mid(at, length));
        at += length;
    }
}

}

FormulaDrawing FormulaDrawing::fromJson(const QJsonObject& json, FormulaFonts& fonts) {
    FormulaDrawing drawing;
    drawing.m_error = json.value("error"_L1).toString();
    if (!drawing.m_error.isEmpty())
        return drawing;
    drawing.m_page = number(json.value("page"_L1));
    const qreal ascent = number(json.value("ascent"_L1));
    drawing.m_rect =
        QRectF(0, -ascent, number(json.value("width"_L1)), ascent + number(json.value("descent"_L1))).normalized();
    drawing.m_ink = drawing.m_rect;
    for (const QJsonValue& value : json.value("items"_L1).toArray()) {
        const QJsonObject object = value.toObject();
        Item item{Rule(), colorFromCss(object.value("c"_L1).toString())};
        if (object.contains("t"_L1)) {
            auto glyphs = glyphsFromJson(object);
            if (!glyphs)
                continue;
            item.what = std::move(*glyphs);
        } else if (object.contains("p"_L1)) {
            item.what = Shape{pathFromJson(object.value("p"_L1).toArray()), rectFromJson(object.value("clip"_L1)),
                number(object.value("w"_L1))};
        } else {
            item.what = Rule{rectFromJson(object.value("r"_L1)), object.value("dash"_L1).toBool()};
        }
        drawing.m_ink |= bounds(item, fonts);
        drawing.m_items.push_back(std::move(item));
    }
    return drawing;
}

std::optional<FormulaDrawing::Glyphs> FormulaDrawing::glyphsFromJson(const QJsonObject& json) {
    Glyphs glyphs{json.value("f"_L1).toString(), number(json.value("s"_L1)), json.value("t"_L1).toString(), {},
        number(json.value("y"_L1))};
    for (const QJsonValue& x : json.value("x"_L1).toArray())
        glyphs.x.push_back(number(x));
    std::size_t characters = 0;
    forEachCharacter(glyphs.text, [&](std::size_t, const QString&) { ++characters; });
    if (characters != glyphs.x.size() || !(glyphs.size > 0))
        return std::nullopt;
    return glyphs;
}

QPainterPath FormulaDrawing::pathFromJson(const QJsonArray& json) {
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    for (qsizetype at = 0; at < json.size();) {
        const QString command = json[at++].toString();
        const auto point = [&] {
            const QPointF read(number(json.at(at)), number(json.at(at + 1)));
            at += 2;
            return read;
        };
        if (command == "M"_L1) {
            path.moveTo(point());
        } else if (command == "L"_L1) {
            path.lineTo(point());
        } else if (command == "C"_L1) {
            const QPointF first = point();
            const QPointF second = point();
            path.cubicTo(first, second, point());
        } else if (command == "Q"_L1) {
            const QPointF control = point();
            path.quadTo(control, point());
        } else if (command == "Z"_L1) {
            path.closeSubpath();
        } else {
            break;
        }
    }
    return path;
}

QRectF FormulaDrawing::bounds(const Item& item, FormulaFonts& fonts) {
    if (const auto* rule = std::get_if<Rule>(&item.what))
        return rule->rect;
    if (const auto* shape = std::get_if<Shape>(&item.what)) {
        const qreal half = shape->lineWidth / 2;
        const QRectF all = shape->path.boundingRect().adjusted(-half, -half, half, half);
        return shape->clip.isNull() ? all : all & shape->clip;
    }
    const auto& glyphs = std::get<Glyphs>(item.what);
    QRectF all;
    constexpr qreal sample = 64;
    const QRawFont& font = fonts.font(glyphs.face, sample);
    forEachCharacter(glyphs.text, [&](std::size_t index, const QString& character) {
        const auto indexes = font.glyphIndexesForString(character);
        QRectF box(0, -0.8, 0.8, 1); // of a letter from elsewhere, about
        if (!indexes.isEmpty() && indexes.first() != 0) {
            const QRectF drawn = font.boundingRect(indexes.first());
            box = QRectF(drawn.topLeft() / sample, drawn.size() / sample);
        }
        all |= scaled(box, glyphs.size).translated(glyphs.x[index], glyphs.y);
    });
    return all;
}

qsizetype FormulaDrawing::cost() const {
    qsizetype bytes = sizeof(FormulaDrawing) + m_error.size() * 2;
    for (const Item& item : m_items) {
        bytes += sizeof(Item);
        if (const auto* glyphs = std::get_if<Glyphs>(&item.what))
            bytes += glyphs->text.size() * 2 + glyphs->face.size() * 2 + 48 +
                static_cast<qsizetype>(glyphs->x.size() * sizeof(qreal));
        else if (const auto* shape = std::get_if<Shape>(&item.what))
            bytes += shape->path.elementCount() * static_cast<qsizetype>(sizeof(QPainterPath::Element)) + 64;
    }
    return bytes;
}

void FormulaDrawing::paint(
    QPainter& painter, FormulaFonts& fonts, qreal size, const QColor& color, const QColor& errorColor) const {
    painter.setRenderHint(QPainter::Antialiasing);
    for (const Item& item : m_items) {
        const QColor own = !item.color.isValid() ? color : item.color.rgb() == mistake ? errorColor : item.color;
        painter.setPen(QPen(own, 1));
        painter.setBrush(own);
        if (const auto* glyphs = std::get_if<Glyphs>(&item.what))
            draw(*glyphs, painter, fonts, size);
        else if (const auto* rule = std::get_if<Rule>(&item.what))
            draw(*rule, painter, size);
        else
            draw(std::get<Shape>(item.what), painter, size);
    }
}

void FormulaDrawing::draw(const Glyphs& glyphs, QPainter& painter, FormulaFonts& fonts, qreal size) {
    const QRawFont& font = fonts.font(glyphs.face, glyphs.size * size);
    QList<quint32> indexes;
    QList<QPointF> places;
    forEachCharacter(glyphs.text, [&](std::size_t at, const QString& character) {
        const QPointF place(glyphs.x[at] * size, glyphs.y * size);
        const auto found = font.isValid() ? font.glyphIndexesForString(character) : QList<quint32>();
        if (!found.isEmpty() && found.first() != 0) {
            indexes.append(found.first());
            places.append(place);
        } else {
            painter.setFont(otherFont(glyphs.face, glyphs.size * size));
            painter.drawText(place, character);
        }
    });
    if (indexes.isEmpty())
        return;
    QGlyphRun run;
    run.setRawFont(font);
    run.setGlyphIndexes(indexes);
    run.setPositions(places);
    painter.drawGlyphRun({}, run);
}

void FormulaDrawing::draw(const Rule& rule, QPainter& painter, qreal size) {
    // On whole pixels of the device, which a thin line needs to be seen as one.
    const QTransform toDevice = painter.combinedTransform();
    const QRectF exact = toDevice.mapRect(scaled(rule.rect, size));
    const auto snap = [](qreal from, qreal length) {
        return std::pair(std::round(from), std::max(1.0, std::round(length)));
    };
    const auto [x, width] = snap(exact.x(), exact.width());
    const auto [y, height] = snap(exact.y(), exact.height());
    const QTransform back = toDevice.inverted();
    if (!rule.isDashed) {
        painter.fillRect(back.mapRect(QRectF(x, y, width, height)), painter.brush());
        return;
    }
    const bool isFlat = width >= height;
    const qreal dash = 3 * std::min(width, height);
    for (qreal at = 0; at < std::max(width, height); at += 2 * dash) {
        const qreal length = std::min(dash, std::max(width, height) - at);
        painter.fillRect(back.mapRect(isFlat ? QRectF(x + at, y, length, height) : QRectF(x, y + at, width, length)),
            painter.brush());
    }
}

void FormulaDrawing::draw(const Shape& shape, QPainter& painter, qreal size) {
    painter.save();
    if (!shape.clip.isNull())
        painter.setClipRect(scaled(shape.clip, size), Qt::IntersectClip);
    const QPainterPath path = QTransform::fromScale(size, size).map(shape.path);
    if (shape.lineWidth > 0)
        painter.strokePath(path, QPen(painter.brush(), std::max(1.0, shape.lineWidth * size)));
    else
        painter.fillPath(path, painter.brush());
    painter.restore();
}

}
