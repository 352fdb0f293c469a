#pragma once

#include "DecodingError.h"
#include "URLError.h"

#include <QByteArray>

#include <optional>
#include <variant>

namespace Korvi {

// What a request to the service can fail with, beside URLError, which passes through as it came.
class APIError : public std::runtime_error {
public:
    struct NetworkError {
        URLError underlying;
    };
    struct DecodingFailure {
        DecodingError underlying;
    };
    struct ServerError {
        int status = 0;
        std::optional<QString> body; // absent when it was not UTF-8
    };
    struct InvalidURL {};
    struct Unknown {};
    struct ServiceUnavailable {};
    using Value = std::variant<NetworkError, DecodingFailure, ServerError, InvalidURL, Unknown, ServiceUnavailable>;

    explicit APIError(Value value);

    static APIError networkError(URLError underlying) { return APIError(NetworkError{std::move(underlying)}); }
    static APIError decodingError(DecodingError underlying) { return APIError(DecodingFailure{std::move(underlying)}); }
    static APIError serverError(int status, std::optional<QString> body) {
        return APIError(ServerError{status, std::move(body)});
    }
    static APIError invalidURL() { return APIError(InvalidURL{}); }
    static APIError unknown() { return APIError(Unknown{}); }
    static APIError serviceUnavailable() { return APIError(ServiceUnavailable{}); }

    const ServerError* asServerError() const { return std::get_if<ServerError>(&value); }

    QString errorDescription() const; // Russian, for the user

    Value value;
};

// The string under "message" of a JSON object; otherwise the first 120 characters; nothing without a body.
QString extractMessage(const std::optional<QString>& body);

}
