#include "QtClipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <algorithm>

namespace Korvi {

bool QtClipboard::hasText() const {
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    return data && !data->text().isEmpty();
}

QImage QtClipboard::image() const {
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    return data && data->hasImage() ? qvariant_cast<QImage>(data->imageData()) : QImage();
}

QList<QUrl> QtClipboard::files() const {
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    const QList<QUrl> urls = data && data->hasUrls() ? data->urls() : QList<QUrl>();
    return std::ranges::all_of(urls, &QUrl::isLocalFile) ? urls : QList<QUrl>();
}

}
