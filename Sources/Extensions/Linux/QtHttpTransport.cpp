#include "QtHttpTransport.h"

#include "Loopback.h"

#include <QNetworkCookie>
#include <QNetworkCookieJar>
#include <QNetworkReply>
#include <QPointer>
#include <QTimer>

#include <array>

namespace Korvi {

using namespace Qt::Literals;

namespace {

struct ErrorRow {
    QNetworkReply::NetworkError network;
    URLError::Code code;
    QStringView text;
};

constexpr std::array errorRows{
    ErrorRow{
        QNetworkReply::ConnectionRefusedError, URLError::Code::cannotConnectToHost, u"Сервер не принимает соединения."},
    ErrorRow{QNetworkReply::RemoteHostClosedError, URLError::Code::networkConnectionLost, u"Соединение прервано."},
    ErrorRow{QNetworkReply::HostNotFoundError, URLError::Code::cannotFindHost, u"Сервер не найден."},
    ErrorRow{QNetworkReply::TimeoutError, URLError::Code::timedOut, u"Время ожидания истекло."},
    ErrorRow{QNetworkReply::OperationCanceledError, URLError::Code::timedOut, u"Время ожидания истекло."},
    ErrorRow{QNetworkReply::SslHandshakeFailedError, URLError::Code::secureConnectionFailed,
        u"Не удалось установить защищённое соединение."},
    ErrorRow{
        QNetworkReply::TemporaryNetworkFailureError, URLError::Code::networkConnectionLost, u"Соединение прервано."},
    ErrorRow{QNetworkReply::NetworkSessionFailedError, URLError::Code::notConnectedToInternet,
        u"Нет подключения к интернету."},
    ErrorRow{
        QNetworkReply::UnknownNetworkError, URLError::Code::notConnectedToInternet, u"Нет подключения к интернету."},
};

}

URLError urlError(int networkError, const QString& fallback) {
    for (const ErrorRow& row : errorRows) {
        if (row.network == networkError)
            return URLError(row.code, row.text.toString());
    }
    return URLError(URLError::Code::other, fallback);
}

QtHttpTransport::QtHttpTransport() {
    m_manager.setAutoDeleteReplies(false);
    m_manager.setRedirectPolicy(QNetworkRequest::SameOriginRedirectPolicy);
}

Async<HttpResponse> QtHttpTransport::send(HttpRequest request) {
    Resolver<HttpResponse> resolver;
    if (request.url.scheme() != "https"_L1 && !(request.url.scheme() == "http"_L1 && isLoopback(request.url))) {
        resolver.fail(URLError(URLError::Code::secureConnectionFailed,
            u"Адрес сервиса должен начинаться с https: без шифрования можно обращаться только к этому компьютеру."_s));
        return resolver.async();
    }

    QNetworkRequest outgoing(request.url);
    outgoing.setTransferTimeout(static_cast<int>(request.timeout.count()));
    for (const auto& [name, value] : request.headers)
        outgoing.setRawHeader(name, value);
    QNetworkReply* reply = request.bodyDevice
        ? m_manager.sendCustomRequest(outgoing, request.method, request.bodyDevice.get())
        : m_manager.sendCustomRequest(outgoing, request.method, request.body);
    if (request.onUploadProgress)
        QObject::connect(reply, &QNetworkReply::uploadProgress, reply,
            [report = request.onUploadProgress](qint64 sent, qint64 total) {
                if (total > 0) // Qt ends with a report of nothing
                    report(sent, total);
            });

    auto* limit = new QTimer(reply);
    limit->setSingleShot(true);
    QObject::connect(limit, &QTimer::timeout, reply, &QNetworkReply::abort);
    limit->start(request.resourceTimeout);

    QObject::connect(reply, &QNetworkReply::finished, reply, [reply, resolver, body = request.bodyDevice]() mutable {
        reply->deleteLater();
        const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
        // Qt reports 4xx and 5xx as errors too. Any other error, be it behind a good status, means
        // that the exchange broke off.
        const bool brokeOff = reply->error() != QNetworkReply::NoError &&
            (reply->error() < QNetworkReply::ContentAccessDenied || status.toInt() < 400);
        if (brokeOff)
            return resolver.fail(urlError(reply->error(), reply->errorString()));
        HttpResponse response{.status = status.toInt(), .headers = {}, .body = reply->readAll()};
        for (const auto& [name, value] : reply->rawHeaderPairs())
            response.headers.emplace_back(name, value);
        resolver.resolve(std::move(response));
    });
    // Null when it ended with its transport. Its signals stay connected: Qt's own abort goes through them.
    resolver.onCancel([reply = QPointer(reply)] {
        if (reply)
            reply->abort();
    });
    return resolver.async();
}

QByteArray QtHttpTransport::cookieHeader(const QUrl& url) const {
    QByteArrayList pairs;
    for (const QNetworkCookie& cookie : m_manager.cookieJar()->cookiesForUrl(url))
        pairs.append(cookie.toRawForm(QNetworkCookie::NameAndValueOnly));
    return pairs.join("; ");
}

}
