#pragma once

#include "HttpTransport.h"

#include <QNetworkAccessManager>

namespace Korvi {

// HTTP on Qt Network. TLS is checked; redirects are followed only to places that are no less safe.
class QtHttpTransport : public HttpTransport {
public:
    QtHttpTransport();

    Async<HttpResponse> send(HttpRequest request) override;
    QByteArray cookieHeader(const QUrl& url) const override;

private:
    QNetworkAccessManager m_manager;
};

// What a reader is told of a failed transfer, and the code that callers test for.
URLError urlError(int networkError, const QString& fallback);

}
