#pragma once

#include "PreviewProcess.h"

#include <QFile>
#include <QImage>
#include <QQuickItem>
#include <QTemporaryDir>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

#include <memory>

namespace Korvi {

// A page or a picture that an artifact is, as it looks and works, drawn by a process of its own without a network. The
// process runs while there is something to show, and is gone with this item.
class ArtifactPreview : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString kind MEMBER m_kind NOTIFY kindChanged) // "html" or "svg"
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(Status status READ status NOTIFY statusChanged)

public:
    enum Status { Starting, Ready, Failed };
    Q_ENUM(Status)

    static constexpr int settleTime = 200; // milliseconds, until a new size or text is shown
    static constexpr int patience = 20'000;

    explicit ArtifactPreview(QQuickItem* parent = nullptr);
    ~ArtifactPreview() override;

    QString text() const { return m_text; }
    void setText(const QString& text);
    Status status() const { return m_status; }
    qint64 processId() const { return m_process ? m_process->processId() : 0; }
    const QImage& frame() const { return m_frame; }

    Q_INVOKABLE void restart();

signals:
    void kindChanged();
    void textChanged();
    void statusChanged();
    void frameChanged();

protected:
    void componentComplete() override;
    void geometryChange(const QRectF& now, const QRectF& before) override;
    QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData* data) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void hoverMoveEvent(QHoverEvent* event) override;
    void hoverLeaveEvent(QHoverEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void start();
    void open();
    void resize();
    void take(const QJsonObject& message);
    void leave(bool forward); // the keyboard goes on behind or before the page
    void readFrame(const QSize& size);
    void fail();
    void setStatus(Status status);
    void sendInput(QJsonObject event);
    void sendPointer(const char* type, QMouseEvent* event);
    void sendFocus(Qt::FocusReason reason);
    void sendKey(const char* type, QKeyEvent* event);
    qreal ratio() const;

    QString m_kind;
    QString m_text;
    Status m_status = Starting;
    std::unique_ptr<PreviewProcess> m_process;
    std::unique_ptr<QTemporaryDir> m_folder; // with the file that frames come through
    QFile m_file;
    const uchar* m_memory = nullptr;
    QSize m_size; // device pixels
    int m_files = 0;
    QImage m_frame;
    bool m_isFrameNew = false;
    bool m_isOpened = false;
    QTimer m_opening;
    QTimer m_resizing;
    QTimer m_limit;
};

}
