#pragma once

#include <QImage>
#include <QPointer>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

#include <functional>

class QNetworkReply;

namespace Korvi {

// A picture from the network: https, or http from this machine; nothing else is asked for, and no file of this machine
// unless it is told to be the user's own. It is decoded off the main
// thread, no larger than it is shown, and remembered for when its row comes back into view. What goes wrong is told by
// `status` alone: no address gets into the log.
class WebPicture : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString source READ source WRITE setSource NOTIFY sourceChanged)
    Q_PROPERTY(bool readsFiles READ readsFiles WRITE setReadsFiles NOTIFY readsFilesChanged)    // the user's own
    Q_PROPERTY(int longestSide READ longestSide WRITE setLongestSide NOTIFY longestSideChanged) // decoded, at most
    Q_PROPERTY(bool isRefused READ isRefused NOTIFY sourceChanged) // it is an address that is never asked
    Q_PROPERTY(qreal radius MEMBER m_radius NOTIFY looksChanged)
    Q_PROPERTY(bool crops MEMBER m_crops NOTIFY looksChanged) // fills its place instead of fitting into it
    Q_PROPERTY(Status status READ status NOTIFY statusChanged)
    Q_PROPERTY(QSizeF naturalSize READ naturalSize NOTIFY statusChanged) // of the picture itself; empty until ready
    Q_PROPERTY(double progress READ progress NOTIFY progressChanged)     // 0 to 1; -1 while it is unknown

public:
    enum Status { Empty, Loading, Ready, Failed };
    Q_ENUM(Status)

    static constexpr qint64 largestFile = 32LL * 1024 * 1024; // bytes

    explicit WebPicture(QQuickItem* parent = nullptr);
    ~WebPicture() override;

    static bool isAllowed(const QUrl& url);

    QString source() const { return m_source; }
    void setSource(const QString& source);
    bool readsFiles() const { return m_readsFiles; }
    void setReadsFiles(bool readsFiles);
    int longestSide() const { return m_longestSide; }
    void setLongestSide(int pixels);
    bool isRefused() const;
    Status status() const { return m_status; }
    QSizeF naturalSize() const { return m_naturalSize; }
    double progress() const { return m_progress; }

    Q_INVOKABLE void reload();
    Q_INVOKABLE QUrl suggestedFile() const;           // for a dialog that saves it
    Q_INVOKABLE void copy() const;                    // as a picture, and as PNG
    Q_INVOKABLE bool savePng(const QUrl& file) const; // as far as it is decoded; false when it cannot be written

    void paint(QPainter* painter) override;

signals:
    void sourceChanged();
    void readsFilesChanged();
    void longestSideChanged();
    void looksChanged();
    void statusChanged();
    void progressChanged();

protected:
    void componentComplete() override;

private:
    void load();
    void stop();
    void finished(QNetworkReply* reply);
    void decode(std::function<QByteArray()> read); // off the main thread
    void show(const QImage& image, const QSize& naturalSize);
    void setStatus(Status status);
    QString key() const;

    QString m_source;
    bool m_readsFiles = false;
    int m_longestSide = 1024;
    qreal m_radius = 0;
    bool m_crops = false;
    Status m_status = Empty;
    QSize m_naturalSize;
    double m_progress = -1;
    QImage m_image;
    QPointer<QNetworkReply> m_reply;
    quint64 m_turn = 0; // what an older load still brings is not wanted
};

}
