#pragma once

#include "SignIn/SocialProvider.h"

#include <QMap>

namespace Korvi {

class Info;

// What this build knows of the providers. Each issues a client identifier to an application; without one, its way to
// sign in is closed.
struct SocialAuthConfiguration {
    // How Google's page comes back: through the client identifier, reversed, as a URL scheme, or to a port of this
    // machine. Which one is allowed was chosen when the identifier was made.
    enum class GoogleRedirect { scheme, loopback };

    QMap<SocialProvider, QString> clientIds; // no empty ones
    QMap<SocialProvider, QString> pages;     // of all providers
    GoogleRedirect googleRedirect = GoogleRedirect::scheme;

    // Other pages than the providers' own may be named for tests, on this machine only.
    static SocialAuthConfiguration fromInfo(const Info& info);

    bool isConfigured(SocialProvider provider) const { return clientIds.contains(provider); }
    // "com.googleusercontent.apps.123-abc" for "123-abc.apps.googleusercontent.com".
    QString reversedGoogleClientId() const;
};

}
