#pragma once

#include "SignIn/SocialAuthConfiguration.h"
#include "SignIn/SocialAuthError.h"
#include "TaskScope.h"

#include <QUrl>

namespace Korvi {

class Random;
class WebAuthenticationSession;

struct GoogleAuthResult {
    QString code;        // the service exchanges it
    QString redirectUri; // what the code was issued for
    bool operator==(const GoogleAuthResult&) const = default;
};

struct VKAuthResult {
    QString silentToken;
    QString uuid;
    std::optional<QString> firstName;
    std::optional<QString> lastName;
    bool operator==(const VKAuthResult&) const = default;
};

struct AppleAuthResult {
    QString identityToken;
    QString userID;
    QString nonce; // raw; the identity token holds its hash
    bool operator==(const AppleAuthResult&) const = default;
};

// The providers' sign-in pages: what the page is asked, and what its redirect says. Failures are SocialAuthError. Every
// visit carries a random `state`; a redirect that names another one belongs to somebody else and is ignored. Main
// thread only.
class SocialAuthService {
public:
    struct Dependencies {
        WebAuthenticationSession& web;
        Random& random;
    };

    // The base URL of the service, which passes the redirects of VK, Yandex and Apple on to the application.
    SocialAuthService(Dependencies dependencies, SocialAuthConfiguration configuration, QString baseURL);

    bool isConfigured(SocialProvider provider) const { return m_configuration.isConfigured(provider); }

    Task<GoogleAuthResult> signInWithGoogle();
    Task<VKAuthResult> signInWithVK();
    Task<QString> signInWithYandex(); // the OAuth token
    Task<AppleAuthResult> signInWithApple();

private:
    using Parameters = QMap<QString, QString>;

    struct Page {
        SocialProvider provider;
        QString redirectUri;
        QUrl callback;
        Parameters query;
    };

    void requireConfigured(SocialProvider provider) const;
    QString serviceCallback(const char* provider) const;
    Task<Parameters> visit(Page page);

    Dependencies m_dependencies;
    SocialAuthConfiguration m_configuration;
    QString m_baseURL;
};

}
