#pragma once

#include <QJsonObject>
#include <QString>

namespace Korvi {

// Facts about the installed application, read once from `Info.json` beside the program; the build writes it.
class Info {
public:
    Info() = default;
    explicit Info(QJsonObject values)
        : m_values(std::move(values)) {}

    // A missing file gives an empty Info; a damaged one as well, with a warning in the log.
    static Info fromFile(const QString& path);

    // Empty when the key is missing or not a string.
    QString string(QLatin1String key) const { return m_values.value(key).toString(); }

private:
    QJsonObject m_values;
};

}
