#pragma once

#include "APIError.h"
#include "AuthTokenStore.h"
#include "HttpTransport.h"
#include "Info.h"
#include "JsonReader.h"
#include "Scheduler.h"

namespace Korvi {

class NotificationCenter;

// The one HTTP gateway to the service: resolves the address, adds the organization and the token, maps failures.
// A transport failure passes through as the URLError it is; everything else is an APIError. Main thread only.
class APIClient {
public:
    struct Dependencies {
        HttpTransport& http;
        AuthTokenStore& tokens;
        Defaults& defaults;
        NotificationCenter& notifications;
        Scheduler& scheduler;
    };

    static constexpr auto requestTimeout = std::chrono::seconds(60);
    static constexpr auto resourceTimeout = std::chrono::seconds(30);
    static constexpr auto uploadTimeout = std::chrono::minutes(10); // in all, as long as it goes on

    APIClient(Dependencies dependencies, const Info& info);

    // `path` begins with a slash and may hold a query. T has `static T fromJson(const JsonReader&)`.
    template <class T>
    Task<T> request(QString path, QByteArray method = "GET", std::optional<QJsonObject> body = std::nullopt) {
        const QByteArray bytes = co_await perform(std::move(path), std::move(method), std::move(body), Form::json);
        co_return decode<T>(bytes);
    }

    // For an answer that is an array of T.
    template <class T>
    Task<std::vector<T>> requestArray(QString path) {
        const QByteArray bytes = co_await perform(std::move(path), "GET", std::nullopt, Form::json);
        co_return decodeArray<T>(bytes);
    }

    // For answers that are not JSON, or are not decoded here.
    Task<QByteArray> requestData(
        QString path, QByteArray method = "GET", std::optional<QJsonObject> body = std::nullopt);

    // One file as the form that `uploadURL()` takes. Gives the bytes of the answer.
    Task<QByteArray> upload(std::shared_ptr<QIODevice> form, QByteArray contentType,
        std::function<void(qint64 sent, qint64 total)> onProgress);

    Task<Secret> authToken() { return m_dependencies.tokens.read(); }
    Task<void> setAuthToken(Secret token) { return m_dependencies.tokens.write(std::move(token)); }

    const QString& baseURL() const { return m_baseURL; } // without a trailing slash
    QString apiHost() const;                             // with the port when the base URL names one
    bool isSecure() const;                               // https and wss; plain only towards this machine
    QString uploadURL() const;
    std::optional<QString> organizationId() const;
    QByteArray cookieHeader(const QUrl& url) const { return m_dependencies.http.cookieHeader(url); }

private:
    enum class Form { json, bytes };

    Task<QByteArray> perform(QString path, QByteArray method, std::optional<QJsonObject> body, Form form);
    // Fills in the headers, and maps the failures of the answer.
    Task<QByteArray> exchange(QString path, HttpRequest request, Form form);

    template <class T>
    static T decode(const QByteArray& bytes) {
        try {
            return decodeJson<T>(bytes);
        } catch (const DecodingError& error) {
            throw APIError::decodingError(error);
        }
    }

    template <class T>
    static std::vector<T> decodeArray(const QByteArray& bytes) {
        try {
            return decodeJsonArray<T>(bytes);
        } catch (const DecodingError& error) {
            throw APIError::decodingError(error);
        }
    }

    Dependencies m_dependencies;
    QString m_baseURL;
    HttpHeaders m_headers;
};

// An answer of which nothing is read.
struct EmptyResponse {
    static EmptyResponse fromJson(const JsonReader&) { return {}; }
};

}
