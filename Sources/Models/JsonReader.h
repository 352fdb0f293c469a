#pragma once

#include "DecodingError.h"

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace Korvi {

// A strict view of one JSON object. A required key that is missing or of another type throws DecodingError with
// the key path; an optional one is absent when it is missing or null, and throws when it is of another type.
class JsonReader {
public:
    explicit JsonReader(QJsonObject object, QString path = {});

    // Throws DecodingError when the value is not an object.
    static JsonReader ofValue(const QJsonValue& value, const QString& path = {});

    QString string(QLatin1String key) const;
    qint64 integer(QLatin1String key) const;
    double number(QLatin1String key) const;
    bool boolean(QLatin1String key) const;

    std::optional<QString> optionalString(QLatin1String key) const;
    std::optional<qint64> optionalInteger(QLatin1String key) const;
    std::optional<double> optionalNumber(QLatin1String key) const;
    std::optional<bool> optionalBoolean(QLatin1String key) const;

    JsonReader object(QLatin1String key) const;
    std::optional<JsonReader> optionalObject(QLatin1String key) const;

    // T needs `static T fromJson(const JsonReader&)`.
    template <class T>
    std::vector<T> array(QLatin1String key) const;
    template <class T>
    std::optional<std::vector<T>> optionalArray(QLatin1String key) const;
    template <class T>
    static std::vector<T> arrayOf(const QJsonArray& array, const QString& path = {});

    const QJsonObject& raw() const { return m_object; }
    QString pathOf(QLatin1String key) const;

private:
    bool has(QLatin1String key) const;

    QJsonObject m_object;
    QString m_path;
};

template <class T>
std::vector<T> JsonReader::arrayOf(const QJsonArray& array, const QString& path) {
    std::vector<T> result;
    result.reserve(static_cast<std::size_t>(array.size()));
    for (qsizetype i = 0; i < array.size(); ++i)
        result.push_back(T::fromJson(ofValue(array.at(i), path + QStringLiteral("[%1]").arg(i))));
    return result;
}

template <class T>
std::vector<T> JsonReader::array(QLatin1String key) const {
    const QJsonValue value = m_object.value(key);
    if (!value.isArray())
        throw DecodingError(pathOf(key), QStringLiteral("an array is required"));
    return arrayOf<T>(value.toArray(), pathOf(key));
}

template <class T>
std::optional<std::vector<T>> JsonReader::optionalArray(QLatin1String key) const {
    return has(key) ? std::optional(array<T>(key)) : std::nullopt;
}

// Decodes a whole document. Throws DecodingError, also for text that is not JSON.
template <class T>
T decodeJson(const QByteArray& bytes) {
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    if (error.error != QJsonParseError::NoError)
        throw DecodingError(QStringLiteral("(document)"), error.errorString());
    if (!document.isObject())
        throw DecodingError(QStringLiteral("(document)"), QStringLiteral("an object is required"));
    return T::fromJson(JsonReader(document.object()));
}

// The same for a document that is an array.
template <class T>
std::vector<T> decodeJsonArray(const QByteArray& bytes) {
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    if (error.error != QJsonParseError::NoError)
        throw DecodingError(QStringLiteral("(document)"), error.errorString());
    if (!document.isArray())
        throw DecodingError(QStringLiteral("(document)"), QStringLiteral("an array is required"));
    return JsonReader::arrayOf<T>(document.array());
}

// Writes an optional member only when it is there.
template <class T>
void insertIfPresent(QJsonObject& object, QLatin1String key, const std::optional<T>& value) {
    if (value)
        object.insert(key, QJsonValue(*value));
}

template <class T>
QJsonArray toJsonArray(const std::vector<T>& values) {
    QJsonArray array;
    for (const T& value : values)
        array.append(value.toJson());
    return array;
}

}
