#pragma once

#include <QString>

#include <stdexcept>

namespace Korvi {

// A transport failure: the request did not get an answer.
class URLError : public std::runtime_error {
public:
    enum class Code {
        notConnectedToInternet,
        networkConnectionLost,
        timedOut,
        cannotFindHost,
        cannotConnectToHost,
        dnsLookupFailed,
        cancelled,
        secureConnectionFailed,
        other,
    };

    URLError(Code errorCode, QString text)
        : std::runtime_error(text.toStdString())
        , code(errorCode)
        , description(std::move(text)) {}

    // Whether it says that there is no way to the service, rather than that the service refused.
    bool isNetworkLoss() const { return code <= Code::dnsLookupFailed; }

    Code code;
    QString description; // localized, for a reader
};

}
