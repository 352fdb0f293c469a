#pragma once

#include "AuthenticationRecord.h"
#include "AuthenticationResponse.h"
#include "TaskScope.h"

namespace Korvi {

class APIClient;

// The sign-in calls of the service. Stateless. Failures are APIError and URLError.
class AuthenticationService {
public:
    explicit AuthenticationService(APIClient& client);

    Task<AuthenticationRecord> getAuthenticationRecord();
    Task<void> requestEmailAuthentication(QString email);
    Task<AuthenticationResponse> validateEmailCode(
        QString email, QString code, std::optional<QString> campaign = std::nullopt);
    Task<AuthenticationResponse> googleLogin(std::optional<QString> idToken, std::optional<QString> code,
        std::optional<QString> redirectUri, std::optional<QString> campaign = std::nullopt);
    Task<AuthenticationResponse> vkLogin(QString silentToken, QString uuid, std::optional<QString> firstName,
        std::optional<QString> lastName, std::optional<QString> campaign = std::nullopt);
    Task<AuthenticationResponse> yandexLogin(QString oauthToken, std::optional<QString> campaign = std::nullopt);
    Task<AuthenticationResponse> appleLogin(
        QString identityToken, QString userID, QString nonce, std::optional<QString> campaign = std::nullopt);
    Task<bool> logout();

private:
    APIClient& m_client;
};

}
