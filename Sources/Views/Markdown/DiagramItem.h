#pragma once

#include "FormulaEngine.h"

#include <QColor>
#include <QQuickItem>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

namespace Korvi {

// A diagram as a picture that is as wide as it is drawn, at most `availableWidth`. The last picture stays, stretched,
// until another one has come for a new width, scheme or scale factor.
class DiagramItem : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString code READ code WRITE setCode NOTIFY codeChanged) // empty: nothing is asked for
    Q_PROPERTY(bool isDark READ isDark WRITE setIsDark NOTIFY isDarkChanged)
    Q_PROPERTY(qreal availableWidth READ availableWidth WRITE setAvailableWidth NOTIFY availableWidthChanged)
    Q_PROPERTY(qreal drawingScale READ drawingScale WRITE setDrawingScale NOTIFY drawingScaleChanged)
    // How many times larger than it is drawn the picture is shown: it is to be sharp there, too.
    Q_PROPERTY(qreal magnification READ magnification WRITE setMagnification NOTIFY magnificationChanged)
    Q_PROPERTY(bool isReady READ isReady NOTIFY changed)
    Q_PROPERTY(bool isWrong READ isWrong NOTIFY changed)   // it is no diagram
    Q_PROPERTY(bool isMissed READ isMissed NOTIFY changed) // it could not be drawn

public:
    static constexpr std::chrono::milliseconds calm{150}; // of a width that changes, before it is drawn for

    explicit DiagramItem(QQuickItem* parent = nullptr);

    QString code() const { return m_wanted.code; }
    void setCode(const QString& code);
    bool isDark() const { return m_wanted.isDark; }
    void setIsDark(bool isDark);
    qreal availableWidth() const { return m_availableWidth; }
    void setAvailableWidth(qreal width);
    qreal drawingScale() const { return m_wanted.scale; }
    void setDrawingScale(qreal scale);
    qreal magnification() const { return m_magnification; }
    void setMagnification(qreal magnification);
    bool isReady() const { return m_shown && m_shown->error.isEmpty(); }
    bool isWrong() const { return m_shown && !m_shown->error.isEmpty(); }
    bool isMissed() const { return m_isMissed; }

    Q_INVOKABLE QUrl suggestedFile() const; // for a dialog that saves it
    // As it is shown, on that ground; false when it cannot be written.
    Q_INVOKABLE bool savePng(const QUrl& file, const QColor& ground) const;

signals:
    void codeChanged();
    void isDarkChanged();
    void availableWidthChanged();
    void drawingScaleChanged();
    void magnificationChanged();
    void changed();

protected:
    void componentComplete() override;
    void itemChange(ItemChange change, const ItemChangeData& data) override;
    QSGNode* updatePaintNode(QSGNode* node, UpdatePaintNodeData*) override;

private:
    void fetch();
    void fetchWhenCalm();
    qreal ratio() const; // device pixels in one of its own
    void show(const FormulaEngine::Picture& picture);

    DiagramRequest m_wanted;
    qreal m_availableWidth = 0;
    qreal m_magnification = 1;
    bool m_isMissed = false;
    bool m_isNewImage = false;
    QPointer<FormulaEngine> m_engine;
    FormulaEngine::Picture m_shown;
    Timer m_calm;
};

}
