#pragma once

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <ostream>

// So that a failing test prints what came in words, not in bytes. Found by GoogleTest through the arguments' namespace.
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}
inline void PrintTo(const QByteArray& bytes, std::ostream* out) {
    *out << '"' << bytes.toStdString() << '"';
}
inline void PrintTo(const QStringList& list, std::ostream* out) {
    *out << "[" << list.join(QStringLiteral(" | ")).toStdString() << "]";
}
inline void PrintTo(const QJsonObject& object, std::ostream* out) {
    *out << QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}
