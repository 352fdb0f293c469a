#include "APIClient.h"

#include "Log.h"
#include "NotificationCenter.h"

#include <QIODevice>
#include <QStringDecoder>

namespace Korvi {

using namespace Qt::Literals;

Q_LOGGING_CATEGORY(lcAPI, "korvi.api")

namespace {

constexpr auto compiledInURL = KORVI_BASE_URL;

std::optional<QString> fromUtf8(const QByteArray& bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(bytes);
    return decoder.hasError() ? std::nullopt : std::optional(text);
}

}

APIClient::APIClient(Dependencies dependencies, const Info& info)
    : m_dependencies(dependencies)
    , m_baseURL(info.string("KorviAPIBaseURL"_L1)) {
    if (m_baseURL.isEmpty())
        m_baseURL = QString::fromLatin1(compiledInURL);
    while (m_baseURL.endsWith(u'/'))
        m_baseURL.chop(1);

    const QString version = info.string("CFBundleShortVersionString"_L1);
    m_headers = {
        // Some firewalls in front of a service let only browsers pass, so the prefix is fixed.
        {"User-Agent",
            "Mozilla/5.0 (Macintosh; Intel Mac OS X 10_15_7) AppleWebKit/605.1.15 (KHTML, like Gecko) KorviAI/" +
                (version.isEmpty() ? QByteArray("1.0") : version.toUtf8())},
        {"Accept", "application/json, text/plain, */*"},
        {"Accept-Language", "ru-RU,ru;q=0.9,en;q=0.8"},
    };
}

QString APIClient::apiHost() const {
    QUrl url(m_baseURL);
    if (url.host().isEmpty())
        url = QUrl(QString::fromLatin1(compiledInURL));
    return url.authority(QUrl::FullyEncoded).section(u'@', -1);
}

bool APIClient::isSecure() const {
    return QUrl(m_baseURL).scheme() != "http"_L1;
}

QString APIClient::uploadURL() const {
    return m_baseURL + u"/storage/upload"_s;
}

std::optional<QString> APIClient::organizationId() const {
    return m_dependencies.defaults.string(u"currentOrganizationId"_s);
}

Task<QByteArray> APIClient::requestData(QString path, QByteArray method, std::optional<QJsonObject> body) {
    return perform(std::move(path), std::move(method), std::move(body), Form::bytes);
}

Task<QByteArray> APIClient::perform(QString path, QByteArray method, std::optional<QJsonObject> body, Form form) {
    const auto organization = organizationId();
    QString finalPath = path;
    const bool isScoped =
        !path.contains("/messages"_L1) && !path.contains("/storage"_L1) && !path.contains("/sockets"_L1);
    if (isScoped && organization)
        finalPath += (path.contains(u'?') ? u"&org="_s : u"?org="_s) + *organization;

    const QUrl url(m_baseURL + finalPath);
    if (!url.isValid() || url.host().isEmpty())
        throw APIError::invalidURL();

    HttpRequest request{
        .method = method,
        .url = url,
        .headers = {},
        .body = {},
        .timeout = requestTimeout,
        .resourceTimeout = resourceTimeout,
    };
    if (body) {
        request.headers.emplace_back("Content-Type", "application/json");
        request.body = QJsonDocument(*body).toJson(QJsonDocument::Compact);
    }
    QByteArray answer = co_await exchange(std::move(path), std::move(request), form);
    co_return std::move(answer);
}

Task<QByteArray> APIClient::upload(std::shared_ptr<QIODevice> form, QByteArray contentType,
    std::function<void(qint64 sent, qint64 total)> onProgress) {
    const QString path = u"/storage/upload"_s;
    HttpRequest request{
        .method = "POST",
        .url = QUrl(uploadURL()),
        .headers = {{"Content-Type", contentType}},
        .body = {},
        .bodyDevice = std::move(form),
        .onUploadProgress = std::move(onProgress),
        .timeout = requestTimeout,
        .resourceTimeout = uploadTimeout,
    };
    QByteArray answer = co_await exchange(path, std::move(request), Form::json);
    co_return std::move(answer);
}

Task<QByteArray> APIClient::exchange(QString path, HttpRequest request, Form form) {
    const QByteArray method = request.method;
    request.headers.insert(request.headers.begin(), m_headers.begin(), m_headers.end());
    const Secret token = co_await m_dependencies.tokens.read();
    if (!token.isEmpty())
        request.headers.emplace_back("Authorization", "Bearer " + token.reveal());

    const HttpResponse response = co_await m_dependencies.http.send(std::move(request));
    if (response.status == 0)
        throw APIError::unknown();

    if (form == Form::json && response.header("Content-Type").toLower().contains("text/html")) {
        qCWarning(lcAPI).noquote() << "🛑 [APIClient] WAF HTML challenge:"
                                   << QString::fromUtf8(response.body.left(150));
        throw APIError::serviceUnavailable();
    }
    if (response.status < 200 || response.status > 299) {
        const auto text = fromUtf8(response.body);
        qCWarning(lcAPI).noquote() << "❌ [APIClient]" << method << path.section(u'?', 0, 0) << response.status
                                   << extractMessage(text.value_or(u"no body"_s));
        if (response.status == 401 && (form == Form::bytes || !path.startsWith("/auth/"_L1))) {
            const bool wiped = co_await m_dependencies.tokens.wipe(token);
            if (wiped)
                m_dependencies.scheduler.post([center = QPointer(&m_dependencies.notifications)] {
                    if (center)
                        emit center->didReceiveUnauthorizedError();
                });
        }
        throw APIError::serverError(response.status, text);
    }
    co_return response.body;
}

}
