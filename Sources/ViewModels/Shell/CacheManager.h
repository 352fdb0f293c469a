#pragma once

#include <QObject>
#include <QProperty>
#include <QQmlEngine>

#include <functional>
#include <vector>

namespace Korvi {

// Above all the caches of the application: adds up what they hold and clears them together. Sizes are in bytes and
// as of the last look.
class CacheManager : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("owned by the application")
    Q_PROPERTY(qint64 imageCacheSize READ imageCacheSize NOTIFY sizesChanged)
    Q_PROPERTY(qint64 dataCacheSize READ dataCacheSize NOTIFY sizesChanged)
    Q_PROPERTY(qint64 mediaCacheSize READ mediaCacheSize NOTIFY sizesChanged)
    Q_PROPERTY(qint64 totalSize READ totalSize NOTIFY sizesChanged)
    Q_PROPERTY(QString totalText READ totalText NOTIFY sizesChanged)

public:
    enum class Kind { image, data, media };

    struct Cache {
        Kind kind;
        std::function<qint64()> diskSize;
        std::function<void()> clear;
    };

    // The caches in the order in which they are cleared.
    explicit CacheManager(std::vector<Cache> caches, QObject* parent = nullptr);

    Q_INVOKABLE void refreshSizes();
    Q_INVOKABLE void clearAll();

    // "0 байт", "0.5 КБ", "1.0 МБ" ...
    static QString formattedSize(qint64 bytes);

    qint64 imageCacheSize() const { return size(Kind::image); }
    qint64 dataCacheSize() const { return size(Kind::data); }
    qint64 mediaCacheSize() const { return size(Kind::media); }
    qint64 totalSize() const;
    QString totalText() const { return formattedSize(totalSize()); }

signals:
    void sizesChanged();

private:
    qint64 size(Kind kind) const;

    std::vector<Cache> m_caches;
    std::vector<qint64> m_sizes; // of each cache
};

}
