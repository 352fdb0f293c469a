#pragma once

#include <QColor>
#include <QJsonObject>
#include <QPainterPath>

#include <variant>
#include <vector>

class QPainter;

namespace Korvi {

class FormulaFonts;

// A formula that is laid out: glyphs, rules and shapes around the beginning of its baseline, in units of its font size.
// It has no colour and no size of its own, so one serves every theme, text size and screen.
class FormulaDrawing {
public:
    // What the renderer says of a formula; what makes no sense is left out.
    static FormulaDrawing fromJson(const QJsonObject& json, FormulaFonts& fonts);

    // Why the formula cannot be drawn; empty when it can.
    const QString& error() const { return m_error; }

    // From the beginning of the baseline: what it takes in a line of text. Nothing is drawn outside of inkRect().
    const QRectF& rect() const { return m_rect; }
    const QRectF& inkRect() const { return m_ink; }
    // Of a page that shows nothing else, without that page's own padding.
    qreal pageHeight() const { return m_page; }

    qsizetype cost() const; // bytes, about

    // The baseline begins at the painter's origin; `size` in the painter's units. Rules are never thinner than a pixel.
    void paint(QPainter& painter, FormulaFonts& fonts, qreal size, const QColor& color, const QColor& errorColor) const;

private:
    struct Glyphs {
        QString face;
        qreal size = 0;
        QString text;
        std::vector<qreal> x; // of each character
        qreal y = 0;          // of the baseline
    };
    struct Rule {
        QRectF rect;
        bool isDashed = false;
    };
    struct Shape {
        QPainterPath path;
        QRectF clip;         // null: none
        qreal lineWidth = 0; // 0: filled
    };
    struct Item {
        std::variant<Glyphs, Rule, Shape> what;
        QColor color; // not valid: that of the formula
    };

    static std::optional<Glyphs> glyphsFromJson(const QJsonObject& json);
    static QPainterPath pathFromJson(const QJsonArray& json);
    static QRectF bounds(const Item& item, FormulaFonts& fonts);

    static void draw(const Glyphs& glyphs, QPainter& painter, FormulaFonts& fonts, qreal size);
    static void draw(const Rule& rule, QPainter& painter, qreal size);
    static void draw(const Shape& shape, QPainter& painter, qreal size);

    std::vector<Item> m_items;
    QRectF m_rect;
    QRectF m_ink;
    qreal m_page = 0;
    QString m_error;
};

}
