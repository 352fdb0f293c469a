#include "WebPicture.h"

#include "Loopback.h"
#include "SafeSvg.h"

#include <QBuffer>
#include <QCache>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFuture>
#include <QGuiApplication>
#include <QImageReader>
#include <QMimeData>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QPainter>
#include <QPainterPath>
#include <QPromise>
#include <QQmlEngine>
#include <QSaveFile>
#include <QStandardPaths>
#include <QThreadPool>

#include <algorithm>
#include <memory>

namespace Korvi {

using namespace Qt::Literals;

namespace {

constexpr int idleTimeout = 30'000;         // milliseconds
constexpr qsizetype remembered = 48 * 1024; // KB of pixels
constexpr int largestAllocation = 256;      // MB, while a picture is decoded
constexpr qint64 mostPixels = 64'000'000;
const QByteArray formats[] = {"bmp", "gif", "ico", "jpeg", "png", "tiff", "webp"};

struct Decoded {
    QImage image;
    QSize naturalSize;
};

// Of the main thread.
QCache<QString, Decoded>& memory() {
    static QCache<QString, Decoded> cache(remembered);
    return cache;
}

QByteArray bytesOf(const QString& path) {
    QFile file(path);
    const bool isReadable = QFileInfo(path).isFile() && file.size() <= WebPicture::largestFile;
    return isReadable && file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

Decoded decoded(const QByteArray& bytes, const QSize& bounds) {
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    // Qt's own reader of SVG is not among them, see SafeSvg.h.
    const QByteArray format = QImageReader::imageFormat(&buffer);
    if (std::ranges::find(formats, format) == std::end(formats)) {
        Decoded drawn;
        drawn.image = SafeSvg::rendered(bytes, bounds, drawn.naturalSize);
        return drawn;
    }
    QImageReader reader(&buffer, format);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (size.isValid()) {
        if (qint64(size.width()) * size.height() > mostPixels && !reader.supportsOption(QImageIOHandler::ScaledSize))
            return {};
        if (size.width() > bounds.width() || size.height() > bounds.height())
            reader.setScaledSize(size.scaled(bounds, Qt::KeepAspectRatio).expandedTo({1, 1}));
    }
    QImage image = reader.read();
    if (!image.isNull() && (image.width() > bounds.width() || image.height() > bounds.height()))
        image = image.scaled(bounds, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    const bool isTurned = reader.transformation() & QImageIOHandler::TransformationRotate90;
    return {image, size.isValid() ? (isTurned ? size.transposed() : size) : image.size()};
}

}

WebPicture::WebPicture(QQuickItem* parent)
    : QQuickPaintedItem(parent) {
    QImageReader::setAllocationLimit(largestAllocation);
    setAntialiasing(true);
    connect(this, &WebPicture::looksChanged, this, [this] { update(); });
}

WebPicture::~WebPicture() {
    stop();
}

bool WebPicture::isAllowed(const QUrl& url) {
    return url.isValid() && !url.host().isEmpty() &&
        (url.scheme() == "https"_L1 || (url.scheme() == "http"_L1 && isLoopback(url)));
}

bool WebPicture::isRefused() const {
    return !m_source.isEmpty() && !isAllowed(QUrl(m_source, QUrl::StrictMode));
}

void WebPicture::setSource(const QString& source) {
    if (source == m_source)
        return;
    m_source = source;
    emit sourceChanged();
    if (isComponentComplete())
        load();
}

void WebPicture::setReadsFiles(bool readsFiles) {
    if (readsFiles == m_readsFiles)
        return;
    m_readsFiles = readsFiles;
    emit readsFilesChanged();
    if (isComponentComplete() && QUrl(m_source).isLocalFile())
        load();
}

void WebPicture::setLongestSide(int pixels) {
    if (pixels == m_longestSide)
        return;
    m_longestSide = pixels;
    emit longestSideChanged();
}

void WebPicture::reload() {
    load();
}

void WebPicture::componentComplete() {
    QQuickPaintedItem::componentComplete();
    load();
}

QString WebPicture::key() const {
    return QString::number(m_longestSide) + u' ' + m_source;
}

void WebPicture::stop() {
    ++m_turn;
    if (m_reply) {
        m_reply->disconnect(this);
        m_reply->abort();
        m_reply->deleteLater();
        m_reply = nullptr;
    }
}

void WebPicture::load() {
    stop();
    m_image = {};
    m_naturalSize = {};
    m_progress = -1;
    update();
    if (m_source.isEmpty())
        return setStatus(Empty);
    const QUrl file(m_source); // may have blanks in its name
    if (file.isLocalFile() && !m_readsFiles)
        return setStatus(Failed);
    if (const Decoded* known = memory().object(key()))
        return show(known->image, known->naturalSize);
    if (file.isLocalFile()) {
        setStatus(Loading);
        return decode([path = file.toLocalFile()] { return bytesOf(path); });
    }
    const QUrl url(m_source, QUrl::StrictMode);
    QQmlEngine* engine = qmlEngine(this);
    if (!isAllowed(url) || !engine)
        return setStatus(Failed);
    setStatus(Loading);
    QNetworkRequest request(url);
    request.setTransferTimeout(idleTimeout);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    QNetworkReply* reply = engine->networkAccessManager()->get(request);
    m_reply = reply;
    connect(reply, &QNetworkReply::downloadProgress, this, [this, reply](qint64 received, qint64 total) {
        if (received > largestFile || total > largestFile)
            reply->abort();
        m_progress = total > 0 ? static_cast<double>(received) / static_cast<double>(total) : -1;
        emit progressChanged();
    });
    connect(reply, &QNetworkReply::finished, this, [this, reply] { finished(reply); });
}

void WebPicture::finished(QNetworkReply* reply) {
    reply->deleteLater();
    m_reply = nullptr;
    if (reply->error() != QNetworkReply::NoError)
        setStatus(Failed);
    else
        decode([bytes = reply->readAll()] { return bytes; });
}

void WebPicture::decode(std::function<QByteArray()> read) {
    const auto promise = std::make_shared<QPromise<Decoded>>();
    const quint64 turn = m_turn;
    promise->future().then(this, [this, turn, name = key()](const Decoded& result) {
        if (!result.image.isNull())
            memory().insert(name, new Decoded(result), std::max<qsizetype>(1, result.image.sizeInBytes() / 1024));
        if (turn != m_turn)
            return;
        if (result.image.isNull())
            setStatus(Failed);
        else
            show(result.image, result.naturalSize);
    });
    QThreadPool::globalInstance()->start(
        [promise, read = std::move(read), bounds = QSize(m_longestSide, m_longestSide)] {
            promise->start();
            promise->addResult(decoded(read(), bounds));
            promise->finish();
        });
}

void WebPicture::show(const QImage& image, const QSize& naturalSize) {
    m_image = image;
    m_naturalSize = naturalSize;
    setStatus(Ready);
    update();
}

void WebPicture::setStatus(Status status) {
    // The natural size may be another one all the same.
    m_status = status;
    emit statusChanged();
}

void WebPicture::copy() const {
    if (m_image.isNull())
        return;
    auto* data = new QMimeData;
    data->setImageData(m_image);
    QByteArray png;
    QBuffer buffer(&png);
    if (m_image.save(&buffer, "PNG"))
        data->setData(u"image/png"_s, png);
    QGuiApplication::clipboard()->setMimeData(data);
}

bool WebPicture::savePng(const QUrl& file) const {
    QDir().mkpath(QFileInfo(file.toLocalFile()).absolutePath()); // what was proposed may not be there yet
    QSaveFile output(file.toLocalFile());
    return !m_image.isNull() && output.open(QIODevice::WriteOnly) && m_image.save(&output, "PNG") && output.commit();
}

QUrl WebPicture::suggestedFile() const {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
    return QUrl::fromLocalFile(folder + u"/image.png"_s);
}

void WebPicture::paint(QPainter* painter) {
    if (m_image.isNull() || width() <= 0 || height() <= 0)
        return;
    const QSizeF place(width(), height());
    const QSizeF shown =
        QSizeF(m_image.size()).scaled(place, m_crops ? Qt::KeepAspectRatioByExpanding : Qt::KeepAspectRatio);
    const QRectF target(QPointF((width() - shown.width()) / 2, (height() - shown.height()) / 2), shown);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    if (m_radius > 0) {
        // A brush, for a clip has hard edges.
        QBrush brush(m_image);
        QTransform transform;
        transform.translate(target.x(), target.y());
        transform.scale(target.width() / m_image.width(), target.height() / m_image.height());
        brush.setTransform(transform);
        painter->setBrush(brush);
        painter->setPen(Qt::NoPen);
        painter->drawRoundedRect(target.intersected(QRectF(QPointF(), place)), m_radius, m_radius);
    } else {
        painter->drawImage(target, m_image);
    }
}

}
