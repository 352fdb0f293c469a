#pragma once

#include <QString>

#include <stdexcept>

namespace Korvi {

// A JSON document that does not have the expected shape. `keyPath` names the place ("data[3].content[0].text"),
// `reason` what was expected there. Neither holds values of the document.
class DecodingError : public std::runtime_error {
public:
    DecodingError(QString path, QString why)
        : std::runtime_error((path + QStringLiteral(": ") + why).toStdString())
        , keyPath(std::move(path))
        , reason(std::move(why)) {}

    QString keyPath;
    QString reason;
};

}
