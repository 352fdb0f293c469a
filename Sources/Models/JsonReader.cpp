#include "JsonReader.h"

namespace Korvi {

JsonReader::JsonReader(QJsonObject object, QString path)
    : m_object(std::move(object))
    , m_path(std::move(path)) {}

JsonReader JsonReader::ofValue(const QJsonValue& value, const QString& path) {
    if (!value.isObject())
        throw DecodingError(
            path.isEmpty() ? QStringLiteral("(document)") : path, QStringLiteral("an object is required"));
    return JsonReader(value.toObject(), path);
}

QString JsonReader::pathOf(QLatin1String key) const {
    return m_path.isEmpty() ? QString(key) : m_path + u'.' + key;
}

bool JsonReader::has(QLatin1String key) const {
    const auto it = m_object.constFind(key);
    return it != m_object.constEnd() && !it->isNull();
}

QString JsonReader::string(QLatin1String key) const {
    const QJsonValue value = m_object.value(key);
    if (!value.isString())
        throw DecodingError(pathOf(key), QStringLiteral("a string is required"));
    return value.toString();
}

qint64 JsonReader::integer(QLatin1String key) const {
    const QJsonValue value = m_object.value(key);
    // Two defaults tell a number without an exact 64-bit form from one that equals the default.
    const qint64 result = value.toInteger(0);
    if (!value.isDouble() || (result == 0 && value.toInteger(1) == 1))
        throw DecodingError(pathOf(key), QStringLiteral("an integer is required"));
    return result;
}

double JsonReader::number(QLatin1String key) const {
    const QJsonValue value = m_object.value(key);
    if (!value.isDouble())
        throw DecodingError(pathOf(key), QStringLiteral("a number is required"));
    return value.toDouble();
}

bool JsonReader::boolean(QLatin1String key) const {
    const QJsonValue value = m_object.value(key);
    if (!value.isBool())
        throw DecodingError(pathOf(key), QStringLiteral("a boolean is required"));
    return value.toBool();
}

std::optional<QString> JsonReader::optionalString(QLatin1String key) const {
    return has(key) ? std::optional(string(key)) : std::nullopt;
}

std::optional<qint64> JsonReader::optionalInteger(QLatin1String key) const {
    return has(key) ? std::optional(integer(key)) : std::nullopt;
}

std::optional<double> JsonReader::optionalNumber(QLatin1String key) const {
    return has(key) ? std::optional(number(key)) : std::nullopt;
}

std::optional<bool> JsonReader::optionalBoolean(QLatin1String key) const {
    return has(key) ? std::optional(boolean(key)) : std::nullopt;
}

JsonReader JsonReader::object(QLatin1String key) const {
    return ofValue(m_object.value(key), pathOf(key));
}

std::optional<JsonReader> JsonReader::optionalObject(QLatin1String key) const {
    return has(key) ? std::optional(object(key)) : std::nullopt;
}

}
