#pragma once

#include "Async.h"
#include "URLError.h"

#include <QByteArray>
#include <QUrl>

#include <chrono>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

class QIODevice;

namespace Korvi {

using HttpHeaders = std::vector<std::pair<QByteArray, QByteArray>>;

struct HttpRequest {
    QByteArray method = "GET";
    QUrl url;
    HttpHeaders headers;
    QByteArray body;
    // Sent instead of `body`, as it is read: open, of known size.
    std::shared_ptr<QIODevice> bodyDevice = nullptr;
    std::function<void(qint64 sent, qint64 total)> onUploadProgress = nullptr; // bytes
    std::chrono::milliseconds timeout = std::chrono::seconds(60);              // without any data coming or going
    std::chrono::milliseconds resourceTimeout = std::chrono::seconds(30);      // in all
};

struct HttpResponse {
    int status = 0;
    HttpHeaders headers;
    QByteArray body;

    // The value of the first header of that name, in any case; empty without one.
    QByteArray header(const QByteArray& name) const {
        for (const auto& [key, value] : headers) {
            if (key.compare(name, Qt::CaseInsensitive) == 0)
                return value;
        }
        return {};
    }
};

// One HTTP exchange. Throws URLError when no answer came; any status is an answer. Plain http is refused for
// hosts that are not this machine.
class HttpTransport {
public:
    virtual ~HttpTransport() = default;

    virtual Async<HttpResponse> send(HttpRequest request) = 0;
    // The value of a "Cookie" header for the URL from the shared cookie storage; empty when it yields none.
    virtual QByteArray cookieHeader(const QUrl& url) const = 0;
};

}
