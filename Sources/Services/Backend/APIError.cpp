#include "APIError.h"

#include "Match.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace Korvi {

using namespace Qt::Literals;

namespace {

QString describe(const APIError::Value& value) {
    return match(
        value,
        [](const APIError::NetworkError& error) -> QString {
            return u"Ошибка сети: "_s + error.underlying.description;
        },
        [](const APIError::DecodingFailure&) -> QString { return u"Не удалось прочитать ответ сервера"_s; },
        [](const APIError::ServerError& error) -> QString { return u"Сервер вернул ошибку (%1)"_s.arg(error.status); },
        [](const APIError::InvalidURL&) -> QString { return u"Некорректный адрес запроса"_s; },
        [](const APIError::Unknown&) -> QString { return u"Неизвестная ошибка"_s; },
        [](const APIError::ServiceUnavailable&) -> QString {
            return u"Сервис временно недоступен. Попробуйте позже."_s;
        });
}

}

APIError::APIError(Value error)
    : std::runtime_error(describe(error).toStdString())
    , value(std::move(error)) {}

QString APIError::errorDescription() const {
    return describe(value);
}

QString extractMessage(const std::optional<QString>& body) {
    if (!body)
        return {};
    const QJsonValue message = QJsonDocument::fromJson(body->toUtf8()).object().value("message"_L1);
    return message.isString() ? message.toString() : body->left(120);
}

}
