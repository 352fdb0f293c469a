#include "Shell/AuthFailures.h"

#include "Backend/APIError.h"

namespace Korvi {

using namespace Qt::Literals;

namespace {

enum class Failure { server, decoding, otherApi, other };

// One row for each provider. %1 is the status or the description, %2 the service's message.
struct Row {
    SocialProvider provider;
    QStringView server;
    QStringView decoding;
    QStringView otherApi;
    QStringView other;
};

constexpr QStringView appleWay = u"Не удалось войти через Apple. Попробуйте другой способ.";
constexpr QStringView vkWay = u"Не удалось войти через VK. Попробуйте другой способ.";
constexpr QStringView yandexWay = u"Не удалось войти через Яндекс. Попробуйте другой способ.";
constexpr QStringView googleWay = u"Не удалось войти через Google. Попробуйте другой способ.";

constexpr std::array table{
    Row{SocialProvider::apple, u"Apple: сервер ответил %1. %2", u"Apple: ошибка разбора ответа — %1", appleWay,
        u"Apple: %1"},
    Row{SocialProvider::vk, u"VK: сервер ответил %1. %2", vkWay, vkWay, u"VK: %1"},
    Row{SocialProvider::yandex, u"Яндекс: сервер ответил %1. %2", yandexWay, yandexWay, u"Яндекс: %1"},
    Row{SocialProvider::google, googleWay, googleWay, googleWay, googleWay},
};

struct Cause {
    Failure failure = Failure::other;
    QString detail;
    QString message;
};

Cause causeOf(const std::exception& error) {
    if (const auto* api = dynamic_cast<const APIError*>(&error)) {
        if (const auto* server = api->asServerError())
            return {Failure::server, QString::number(server->status), extractMessage(server->body)};
        if (const auto* decoding = std::get_if<APIError::DecodingFailure>(&api->value))
            return {Failure::decoding, QString::fromUtf8(decoding->underlying.what()), {}};
        return {Failure::otherApi, {}, {}};
    }
    if (const auto* url = dynamic_cast<const URLError*>(&error))
        return {Failure::other, url->description, {}};
    return {Failure::other, QString::fromUtf8(error.what()), {}};
}

QStringView textOf(const Row& row, Failure failure) {
    switch (failure) {
    case Failure::server: return row.server;
    case Failure::decoding: return row.decoding;
    case Failure::otherApi: return row.otherApi;
    case Failure::other: return row.other;
    }
    return row.otherApi;
}

}

QString loginFailure(SocialProvider provider, const std::exception& error) {
    const Cause cause = causeOf(error);
    for (const Row& row : table) {
        if (row.provider != provider)
            continue;
        QString text = textOf(row, cause.failure).toString();
        if (text.contains(u"%2"_s))
            return text.arg(cause.detail, cause.message).trimmed();
        return text.replace(u"%1"_s, cause.detail);
    }
    return {};
}

QString deleteAccountFailure(const std::exception& error) {
    const Cause cause = causeOf(error);
    switch (cause.failure) {
    case Failure::server: return cause.message.isEmpty() ? u"Произошла ошибка. Попробуйте позже."_s : cause.message;
    case Failure::decoding:
    case Failure::otherApi: return u"Не удалось удалить аккаунт. Попробуйте позже."_s;
    case Failure::other: break;
    }
    return u"Не удалось удалить аккаунт. Проверьте подключение к интернету."_s;
}

}
