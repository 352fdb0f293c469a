#include "AuthenticationService.h"

#include "APIClient.h"

namespace Korvi {

using namespace Qt::Literals;

namespace {

struct LogoutResponse {
    bool success = false;

    static LogoutResponse fromJson(const JsonReader& json) { return {json.boolean("success"_L1)}; }
};

}

AuthenticationService::AuthenticationService(APIClient& client)
    : m_client(client) {}

Task<AuthenticationRecord> AuthenticationService::getAuthenticationRecord() {
    return m_client.request<AuthenticationRecord>(u"/auth"_s);
}

Task<void> AuthenticationService::requestEmailAuthentication(QString email) {
    const QJsonObject body{{"email"_L1, email}};
    co_await m_client.request<EmptyResponse>(u"/auth/email"_s, "POST", body);
}

Task<AuthenticationResponse> AuthenticationService::validateEmailCode(
    QString email, QString code, std::optional<QString> campaign) {
    QJsonObject body{{"email"_L1, email}, {"code"_L1, code}, {"isTrusted"_L1, true}};
    insertIfPresent(body, "campaign"_L1, campaign);
    return m_client.request<AuthenticationResponse>(u"/auth/email/verify"_s, "POST", body);
}

Task<AuthenticationResponse> AuthenticationService::googleLogin(std::optional<QString> idToken,
    std::optional<QString> code, std::optional<QString> redirectUri, std::optional<QString> campaign) {
    QJsonObject body{{"isTrusted"_L1, true}};
    insertIfPresent(body, "idToken"_L1, idToken);
    insertIfPresent(body, "code"_L1, code);
    insertIfPresent(body, "redirectUri"_L1, redirectUri);
    insertIfPresent(body, "campaign"_L1, campaign);
    return m_client.request<AuthenticationResponse>(u"/auth/google"_s, "POST", body);
}

Task<AuthenticationResponse> AuthenticationService::vkLogin(QString silentToken, QString uuid,
    std::optional<QString> firstName, std::optional<QString> lastName, std::optional<QString> campaign) {
    QJsonObject body{{"silentToken"_L1, silentToken}, {"uuid"_L1, uuid}};
    insertIfPresent(body, "firstName"_L1, firstName);
    insertIfPresent(body, "lastName"_L1, lastName);
    insertIfPresent(body, "campaign"_L1, campaign);
    return m_client.request<AuthenticationResponse>(u"/auth/vk"_s, "POST", body);
}

Task<AuthenticationResponse> AuthenticationService::yandexLogin(QString oauthToken, std::optional<QString> campaign) {
    QJsonObject body{{"oauthToken"_L1, oauthToken}, {"isTrusted"_L1, true}};
    insertIfPresent(body, "campaign"_L1, campaign);
    return m_client.request<AuthenticationResponse>(u"/auth/yandex"_s, "POST", body);
}

Task<AuthenticationResponse> AuthenticationService::appleLogin(
    QString identityToken, QString userID, QString nonce, std::optional<QString> campaign) {
    QJsonObject body{
        {"identityToken"_L1, identityToken}, {"userID"_L1, userID}, {"nonce"_L1, nonce}, {"isTrusted"_L1, true}};
    insertIfPresent(body, "campaign"_L1, campaign);
    return m_client.request<AuthenticationResponse>(u"/auth/apple"_s, "POST", body);
}

Task<bool> AuthenticationService::logout() {
    const LogoutResponse response = co_await m_client.request<LogoutResponse>(u"/auth/logout"_s, "POST");
    co_return response.success;
}

}
