#include "ImageAddress.h"

#include "Loopback.h"

namespace Korvi {

namespace {

bool isAllowed(const QUrl& url) {
    if (!url.isValid() || url.host().isEmpty())
        return false;
    return url.scheme() == QLatin1String("https") || (url.scheme() == QLatin1String("http") && isLoopback(url));
}

}

void ImageAddress::setText(const QString& text) {
    if (text == m_text)
        return;
    m_text = text;
    const QUrl url(text.trimmed());
    m_url = isAllowed(url) ? url : QUrl();
    emit textChanged();
}

}
