#pragma once

#include "FormulaEngine.h"

#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

namespace Korvi {

// A formula, drawn in one colour and sharp at any scale factor, with its baseline at `baselineOffset`. Nothing is drawn
// until it is laid out; it is at once if it was before.
class FormulaItem : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString formula READ formula WRITE setFormula NOTIFY formulaChanged) // empty: nothing is asked for
    Q_PROPERTY(bool isBlock READ isBlock WRITE setIsBlock NOTIFY isBlockChanged)
    Q_PROPERTY(qreal fontSize READ fontSize WRITE setFontSize NOTIFY fontSizeChanged) // pixels
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)
    Q_PROPERTY(
        QColor errorColor READ errorColor WRITE setErrorColor NOTIFY errorColorChanged) // of what TeX does not know
    Q_PROPERTY(bool isReady READ isReady NOTIFY changed)
    Q_PROPERTY(bool isWrong READ isWrong NOTIFY changed)   // it is no formula
    Q_PROPERTY(bool isMissed READ isMissed NOTIFY changed) // it could not be laid out
    Q_PROPERTY(qreal ems READ ems NOTIFY changed)          // width, in units of the font size
    Q_PROPERTY(qreal pageHeight READ pageHeight NOTIFY
            pageHeightChanged) // of a page with this formula alone; 0 before it is ready

public:
    explicit FormulaItem(QQuickItem* parent = nullptr);

    QString formula() const { return m_formula; }
    void setFormula(const QString& formula);
    bool isBlock() const { return m_isBlock; }
    void setIsBlock(bool isBlock);
    qreal fontSize() const { return m_fontSize; }
    void setFontSize(qreal size);
    QColor color() const { return m_color; }
    void setColor(const QColor& color);
    QColor errorColor() const { return m_errorColor; }
    void setErrorColor(const QColor& color);
    bool isReady() const { return m_drawing && m_drawing->error().isEmpty(); }
    bool isWrong() const { return m_drawing && !m_drawing->error().isEmpty(); }
    bool isMissed() const { return m_isMissed; }
    qreal ems() const { return isReady() ? m_drawing->inkRect().width() : 0; }
    qreal pageHeight() const;

    void paint(QPainter* painter) override;

signals:
    void formulaChanged();
    void isBlockChanged();
    void fontSizeChanged();
    void colorChanged();
    void errorColorChanged();
    void pageHeightChanged();
    void changed(); // another drawing, or none

protected:
    void componentComplete() override;

private:
    void fetch();
    void show(const FormulaEngine::Formula& drawing);
    void measure();

    QString m_formula;
    bool m_isBlock = false;
    qreal m_fontSize = 16;
    QColor m_color = Qt::black;
    QColor m_errorColor = Qt::red;
    bool m_isMissed = false;
    QPointer<FormulaEngine> m_engine;
    FormulaEngine::Formula m_drawing;
};

}
