#pragma once

#include <stdexcept>

namespace Korvi {

// Why the visit to a provider's page gave nothing to sign in with.
class SocialAuthError : public std::runtime_error {
public:
    enum class Code {
        noPresentingViewController, // there is no window to sign in from
        noToken,                    // the provider came back without what was asked for
        sessionStartFailed,         // no browser could be opened
        cancelled,                  // the user has changed their mind
        invalidURL,
        notConfigured, // this build has no client identifier for the provider
    };

    explicit SocialAuthError(Code errorCode)
        : std::runtime_error(describe(errorCode))
        , code(errorCode) {}

    Code code;

private:
    static const char* describe(Code code) {
        switch (code) {
        case Code::noPresentingViewController: return "there is no window to sign in from";
        case Code::noToken: return "the provider gave no token";
        case Code::sessionStartFailed: return "the browser could not be opened";
        case Code::cancelled: return "cancelled";
        case Code::invalidURL: return "the address is not valid";
        case Code::notConfigured: return "the provider is not configured";
        }
        return "";
    }
};

}
