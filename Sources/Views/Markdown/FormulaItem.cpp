#include "FormulaItem.h"

#include "LaTeXWebView.h"

#include <QPainter>
#include <QQmlEngine>

#include <cmath>

namespace Korvi {

FormulaItem::FormulaItem(QQuickItem* parent)
    : QQuickPaintedItem(parent) {}

void FormulaItem::setFormula(const QString& formula) {
    if (formula == m_formula)
        return;
    m_formula = formula;
    emit formulaChanged();
    fetch();
}

void FormulaItem::setIsBlock(bool isBlock) {
    if (isBlock == m_isBlock)
        return;
    m_isBlock = isBlock;
    emit isBlockChanged();
    fetch();
}

void FormulaItem::setFontSize(qreal size) {
    if (size == m_fontSize)
        return;
    m_fontSize = size;
    emit fontSizeChanged();
    measure();
}

void FormulaItem::setColor(const QColor& color) {
    if (color == m_color)
        return;
    m_color = color;
    emit colorChanged();
    update();
}

void FormulaItem::setErrorColor(const QColor& color) {
    if (color == m_errorColor)
        return;
    m_errorColor = color;
    emit errorColorChanged();
    update();
}

qreal FormulaItem::pageHeight() const {
    if (!isReady())
        return 0;
    const int padding = m_isBlock ? LaTeXWebView::blockPadding : LaTeXWebView::inlinePadding;
    const int drawnFor = m_isBlock ? LaTeXWebView::blockSize : LaTeXWebView::inlineSize;
    return (m_drawing->pageHeight() + 2.0 * padding / drawnFor) * m_fontSize;
}

void FormulaItem::componentComplete() {
    QQuickPaintedItem::componentComplete();
    m_engine = FormulaEngine::of(qmlEngine(this));
    fetch();
}

void FormulaItem::fetch() {
    if (!isComponentComplete())
        return;
    m_isMissed = false;
    if (m_formula.isEmpty() || !m_engine) {
        m_isMissed = !m_engine && !m_formula.isEmpty();
        show(nullptr);
        return;
    }
    if (const auto known = m_engine->cachedFormula(m_formula, m_isBlock)) {
        show(known);
        return;
    }
    show(nullptr);
    m_engine->requestFormula(m_formula, m_isBlock, this,
        [this, formula = m_formula, isBlock = m_isBlock](const FormulaEngine::Formula& drawing) {
            if (formula != m_formula || isBlock != m_isBlock)
                return; // asked for before another one
            m_isMissed = !drawing;
            show(drawing);
        });
}

void FormulaItem::show(const FormulaEngine::Formula& drawing) {
    m_drawing = drawing;
    measure();
    emit changed();
}

void FormulaItem::measure() {
    const QRectF ink = isReady() ? m_drawing->inkRect() : QRectF();
    // Whole pixels above and below the baseline, so that the baseline stands on one.
    setBaselineOffset(std::ceil(-ink.top() * m_fontSize));
    setImplicitSize(
        std::ceil(ink.width() * m_fontSize), baselineOffset() + std::ceil(std::max(0.0, ink.bottom() * m_fontSize)));
    emit pageHeightChanged();
    update();
}

void FormulaItem::paint(QPainter* painter) {
    if (!isReady() || !m_engine)
        return;
    painter->translate(-m_drawing->inkRect().left() * m_fontSize, baselineOffset());
    m_drawing->paint(*painter, m_engine->fonts(), m_fontSize, m_color, m_errorColor);
}

}
