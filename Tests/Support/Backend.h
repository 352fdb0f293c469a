#pragma once

#include "Backend/APIClient.h"
#include "FakeHttp.h"
#include "FakeKeychain.h"
#include "NotificationCenter.h"
#include "Printing.h"
#include "Running.h"
#include "VirtualScheduler.h"

#include <QTemporaryDir>

namespace Korvi::Test {

// An APIClient and the fakes below it.
struct Backend {
    explicit Backend(const QString& baseURL = QStringLiteral("https://service.example:8443/api/v1"))
        : client({.http = http,
                     .tokens = tokens,
                     .defaults = defaults,
                     .notifications = notifications,
                     .scheduler = virtualTime},
              Info(QJsonObject{{"KorviAPIBaseURL", baseURL}, {"CFBundleShortVersionString", "2.5"}})) {}

    void signIn(const QByteArray& token) {
        const Running<void> writing([&] { return tokens.write(Secret(token)); });
        writing.value();
    }
    QByteArray token() {
        const Running<Secret> reading([&] { return tokens.read(); });
        return reading.value().reveal();
    }

    QTemporaryDir folder;
    VirtualScheduler virtualTime;
    FakeHttp http;
    FakeKeychain keychain;
    Defaults defaults{folder.filePath(QStringLiteral("defaults.sqlite"))};
    Defaults group{folder.filePath(QStringLiteral("group.sqlite"))};
    AuthTokenStore tokens{keychain, defaults, &group};
    NotificationCenter notifications;
    APIClient client;
};

}
