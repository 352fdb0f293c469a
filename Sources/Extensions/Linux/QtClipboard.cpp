#include "QtClipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace Korvi {

bool QtClipboard::hasText() const {
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    return data && !data->text().isEmpty();
}

QImage QtClipboard::image() const {
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    return data && data->hasImage() ? qvariant_cast<QImage>(data->imageData()) : QImage();
}

}
