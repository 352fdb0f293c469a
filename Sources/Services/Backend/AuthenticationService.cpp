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

Task<bool> AuthenticationService::logout() {
    const LogoutResponse response = co_await m_client.request<LogoutResponse>(u"/auth/logout"_s, "POST");
    co_return response.success;
}

}
