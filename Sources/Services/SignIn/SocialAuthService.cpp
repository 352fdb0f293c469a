#include "SignIn/SocialAuthService.h"

#include "Clock.h"
#include "Log.h"
#include "Loopback.h"
#include "SignIn/CallbackParameters.h"
#include "SignIn/Nonce.h"
#include "WebAuthenticationSession.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace Korvi {

using namespace Qt::Literals;

Q_LOGGING_CATEGORY(lcSocial, "korvi.auth.social")

namespace {

using Parameters = QMap<QString, QString>;

const QUrl ownScheme(u"korviapp:/"_s);

enum class Origin { ours, unknown, foreign };

// VK gives its page's own `uuid` back as well, which proves as much as the state does.
Origin originOf(const Parameters& redirect, const Parameters& sent) {
    for (const QString& proof : {u"state"_s, u"uuid"_s}) {
        const auto said = redirect.constFind(proof);
        const auto asked = sent.constFind(proof);
        if (said != redirect.constEnd() && asked != sent.constEnd())
            return *said == *asked ? Origin::ours : Origin::foreign;
    }
    return Origin::unknown;
}

// Only the names: values of a redirect are secrets.
[[noreturn]] void failWithoutToken(SocialProvider provider, const Parameters& found) {
    qCWarning(lcSocial).noquote() << "❌ [SocialAuthService]" << nameOf(provider)
                                  << "gave only:" << QStringList(found.keys()).join(u", "_s);
    throw SocialAuthError(SocialAuthError::Code::noToken);
}

QString require(SocialProvider provider, const Parameters& found, const QString& key) {
    QString value = found.value(key);
    if (value.isEmpty())
        failWithoutToken(provider, found);
    return value;
}

std::optional<QString> optional(const Parameters& found, const QString& key) {
    return found.contains(key) ? std::optional(found.value(key)) : std::nullopt;
}

// Whom an identity token is about. Its signature is the service's to check.
QString subjectOf(const QString& identityToken) {
    const QByteArray claims = QByteArray::fromBase64(
        identityToken.section(u'.', 1, 1).toLatin1(), QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals);
    return QJsonDocument::fromJson(claims).object().value("sub"_L1).toString();
}

}

SocialAuthService::SocialAuthService(Dependencies dependencies, SocialAuthConfiguration configuration, QString baseURL)
    : m_dependencies(dependencies)
    , m_configuration(std::move(configuration))
    , m_baseURL(std::move(baseURL)) {}

Task<GoogleAuthResult> SocialAuthService::signInWithGoogle() {
    requireConfigured(SocialProvider::google);
    Page page{
        .provider = SocialProvider::google,
        .redirectUri = m_configuration.reversedGoogleClientId() + u":/oauth2callback"_s,
        .callback = {},
        .query =
            {
                {u"client_id"_s, m_configuration.clientIds.value(SocialProvider::google)},
                {u"response_type"_s, u"code"_s},
                {u"scope"_s, u"openid email profile"_s},
            },
    };
    if (m_configuration.googleRedirect == SocialAuthConfiguration::GoogleRedirect::loopback) {
        const QUrl address = m_dependencies.web.listen();
        if (address.isEmpty())
            throw SocialAuthError(SocialAuthError::Code::sessionStartFailed);
        page.redirectUri = address.toString();
    }
    page.callback = QUrl(page.redirectUri);
    const QString redirectUri = page.redirectUri;
    const Parameters found = co_await visit(page);
    co_return GoogleAuthResult{require(SocialProvider::google, found, u"code"_s), redirectUri};
}

Task<VKAuthResult> SocialAuthService::signInWithVK() {
    requireConfigured(SocialProvider::vk);
    const Page page{
        .provider = SocialProvider::vk,
        .redirectUri = serviceCallback("vk"),
        .callback = ownScheme,
        .query =
            {
                {u"app_id"_s, m_configuration.clientIds.value(SocialProvider::vk)},
                {u"response_type"_s, u"silent_token"_s},
                {u"uuid"_s, m_dependencies.random.uuid().toString(QUuid::WithoutBraces)},
            },
    };
    const Parameters found = co_await visit(page);
    co_return VKAuthResult{
        .silentToken = require(SocialProvider::vk, found, u"silentToken"_s),
        .uuid = require(SocialProvider::vk, found, u"uuid"_s),
        .firstName = optional(found, u"firstName"_s),
        .lastName = optional(found, u"lastName"_s),
    };
}

Task<QString> SocialAuthService::signInWithYandex() {
    requireConfigured(SocialProvider::yandex);
    const Page page{
        .provider = SocialProvider::yandex,
        .redirectUri = serviceCallback("yandex"),
        .callback = ownScheme,
        .query =
            {
                {u"response_type"_s, u"token"_s},
                {u"client_id"_s, m_configuration.clientIds.value(SocialProvider::yandex)},
            },
    };
    const Parameters found = co_await visit(page);
    if (found.contains(u"error"_s)) {
        qCWarning(lcSocial).noquote() << "❌ [SocialAuthService] Яндекс:"
                                      << found.value(u"error_description"_s).left(200);
        throw SocialAuthError(SocialAuthError::Code::noToken);
    }
    co_return require(SocialProvider::yandex, found, u"access_token"_s);
}

Task<AppleAuthResult> SocialAuthService::signInWithApple() {
    requireConfigured(SocialProvider::apple);
    const QString nonce = makeNonce(m_dependencies.random);
    const Page page{
        .provider = SocialProvider::apple,
        .redirectUri = serviceCallback("apple"),
        .callback = ownScheme,
        .query =
            {
                {u"client_id"_s, m_configuration.clientIds.value(SocialProvider::apple)},
                {u"response_type"_s, u"code id_token"_s},
                // With scopes, Apple posts its answer to the service instead of putting it into the address.
                {u"response_mode"_s, u"form_post"_s},
                {u"scope"_s, u"name email"_s},
                {u"nonce"_s, sha256Hex(nonce)},
            },
    };
    const Parameters found = co_await visit(page);
    if (found.value(u"error"_s) == "user_cancelled_authorize"_L1)
        throw SocialAuthError(SocialAuthError::Code::cancelled);
    const QString identityToken = require(SocialProvider::apple, found, u"id_token"_s);
    const QString subject = subjectOf(identityToken);
    if (subject.isEmpty())
        failWithoutToken(SocialProvider::apple, found);
    co_return AppleAuthResult{identityToken, subject, nonce};
}

void SocialAuthService::requireConfigured(SocialProvider provider) const {
    if (!isConfigured(provider))
        throw SocialAuthError(SocialAuthError::Code::notConfigured);
}

QString SocialAuthService::serviceCallback(const char* provider) const {
    return m_baseURL + u"/auth/%1/mobile-callback"_s.arg(QLatin1String(provider));
}

Task<SocialAuthService::Parameters> SocialAuthService::visit(Page page) {
    const SocialProvider provider = page.provider;
    Parameters query = page.query;
    query.insert(u"redirect_uri"_s, page.redirectUri);
    query.insert(u"state"_s, m_dependencies.random.uuid().toString(QUuid::WithoutBraces));
    QStringList pairs;
    for (auto it = query.cbegin(); it != query.cend(); ++it)
        pairs.append(it.key() + u'=' + QString::fromLatin1(QUrl::toPercentEncoding(it.value())));
    QUrl address(m_configuration.pages.value(provider));
    address.setQuery(pairs.join(u'&'));
    const bool isSafe = address.scheme() == "https"_L1 || isLoopback(address);
    if (!address.isValid() || !isSafe)
        throw SocialAuthError(SocialAuthError::Code::invalidURL);

    WebAuthenticationSession::Visit visit{
        .page = address,
        .redirect = page.callback,
        .isExpected = [query](const QUrl& url) { return originOf(callbackParameters(url), query) != Origin::foreign; },
    };
    QUrl redirect;
    try {
        redirect = co_await m_dependencies.web.visit(std::move(visit));
    } catch (const WebAuthenticationError& error) {
        throw SocialAuthError(error.code == WebAuthenticationError::Code::cancelled
                ? SocialAuthError::Code::cancelled
                : SocialAuthError::Code::sessionStartFailed);
    }
    Parameters found = callbackParameters(redirect);
    // Nothing is taken from a redirect that does not prove where it belongs.
    if (originOf(found, query) != Origin::ours)
        failWithoutToken(provider, found);
    co_return Parameters(found);
}

}
