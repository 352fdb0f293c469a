#include "SignIn/SocialAuthConfiguration.h"

#include "Info.h"
#include "Log.h"
#include "Loopback.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

namespace Korvi {

using namespace Qt::Literals;

Q_LOGGING_CATEGORY(lcSocialConfiguration, "korvi.auth.configuration")

namespace {

struct Row {
    SocialProvider provider;
    QLatin1String clientKey;
    QLatin1String pageKey;
    QLatin1String page;
};

constexpr std::array table{
    Row{SocialProvider::google, "KorviGoogleClientID"_L1, "KorviGooglePage"_L1,
        "https://accounts.google.com/o/oauth2/v2/auth"_L1},
    Row{SocialProvider::vk, "KorviVKAppID"_L1, "KorviVKPage"_L1, "https://id.vk.com/auth"_L1},
    Row{SocialProvider::yandex, "KorviYandexClientID"_L1, "KorviYandexPage"_L1, "https://oauth.yandex.ru/authorize"_L1},
    Row{SocialProvider::apple, "KorviAppleClientID"_L1, "KorviApplePage"_L1,
        "https://appleid.apple.com/auth/authorize"_L1},
};

bool isScheme(const QString& text) {
    static const QRegularExpression scheme(u"^[A-Za-z][A-Za-z0-9+.-]*$"_s);
    return scheme.match(text).hasMatch();
}

}

SocialAuthConfiguration SocialAuthConfiguration::fromInfo(const Info& info) {
    SocialAuthConfiguration result;
    if (info.string("KorviGoogleRedirect"_L1) == "loopback"_L1)
        result.googleRedirect = GoogleRedirect::loopback;
    for (const Row& row : table) {
        const QString client = info.string(row.clientKey).trimmed();
        if (!client.isEmpty())
            result.clientIds.insert(row.provider, client);
        QString page = info.string(row.pageKey);
        if (!page.isEmpty() && !isLoopback(QUrl(page))) {
            qCWarning(lcSocialConfiguration).noquote()
                << "⚠️ [SocialAuthConfiguration]" << row.pageKey << "is not on this machine, so it is not used";
            page.clear();
        }
        result.pages.insert(row.provider, page.isEmpty() ? QString(row.page) : page);
    }
    const bool needsScheme = result.googleRedirect == GoogleRedirect::scheme;
    if (result.isConfigured(SocialProvider::google) && needsScheme && !isScheme(result.reversedGoogleClientId())) {
        qCWarning(lcSocialConfiguration)
            << "⚠️ [SocialAuthConfiguration] KorviGoogleClientID does not have the form that Google issues";
        result.clientIds.remove(SocialProvider::google);
    }
    return result;
}

QString SocialAuthConfiguration::reversedGoogleClientId() const {
    QStringList parts = clientIds.value(SocialProvider::google).split(u'.');
    std::reverse(parts.begin(), parts.end());
    return parts.join(u'.');
}

}
