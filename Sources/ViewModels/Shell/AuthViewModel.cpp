#include "Shell/AuthViewModel.h"

#include "Backend/APIClient.h"
#include "Backend/AuthenticationService.h"
#include "Backend/UsersService.h"
#include "Log.h"
#include "Shell/AuthFailures.h"
#include "SignIn/SocialAuthService.h"

namespace Korvi {

using namespace Qt::Literals;

Q_LOGGING_CATEGORY(lcAuth, "korvi.auth", QtInfoMsg)

AuthViewModel::AuthViewModel(Dependencies dependencies, QObject* parent)
    : QObject(parent)
    , m_dependencies(std::move(dependencies))
    , m_countdown(m_dependencies.scheduler) {}

AuthViewModel::~AuthViewModel() = default;

void AuthViewModel::start() {
    m_scope.start([this]() -> Task<void> {
        if (!m_isAuthenticated)
            co_await checkAuth(false);
        m_isInitialCheckComplete = true;
    });
}

void AuthViewModel::requestEmailCode(const QString& email) {
    if (m_isLoading)
        return;
    cancelSignIn();
    m_scope.start([this, email = email.trimmed()] { return runRequestEmailCode(email); });
}

void AuthViewModel::resendCode() {
    requestEmailCode(m_email);
}

Task<void> AuthViewModel::runRequestEmailCode(QString email) {
    m_isLoading = true;
    m_errorMessage = QString();
    try {
        co_await m_dependencies.authentication.requestEmailAuthentication(email);
        m_email = email;
        m_isEnterCodeStep = true;
        m_countdown.start();
    } catch (const std::exception& error) {
        qCWarning(lcAuth).noquote() << "❌ [AuthViewModel] No code could be sent:" << error.what();
        m_errorMessage = u"Не удалось отправить код. Проверьте email."_s;
    }
    m_isLoading = false;
}

void AuthViewModel::validateCode(const QString& code) {
    if (m_isLoading)
        return;
    m_scope.start([this, code] { return runValidateCode(code); });
}

Task<void> AuthViewModel::runValidateCode(QString code) {
    m_isLoading = true;
    m_errorMessage = QString();
    Secret token;
    QString failure;
    try {
        const QString address = m_email;
        const AuthenticationResponse response = co_await m_dependencies.authentication.validateEmailCode(address, code);
        token = Secret(response.session.opaqueToken.toUtf8());
    } catch (const APIError& error) {
        const auto* server = error.asServerError();
        failure = server && server->status != 400 && server->status != 401 ? u"Ошибка сервера. Попробуйте позже."_s
                                                                           : u"Неверный код. Попробуйте ещё раз."_s;
    } catch (const std::exception&) {
        failure = u"Неверный код. Попробуйте ещё раз."_s;
    }
    if (!failure.isEmpty()) {
        m_errorMessage = failure;
        m_isLoading = false;
        co_return;
    }
    co_await finishSignIn(token);
}

Task<void> AuthViewModel::finishSignIn(Secret token) {
    co_await m_dependencies.client.setAuthToken(token);
    co_await checkAuth(true);
    if (m_isAuthenticated) {
        // Whoever comes back to the form later begins with the address.
        m_isEnterCodeStep = false;
        m_countdown.stop();
    }
}

void AuthViewModel::signInWith(const QString& provider) {
    const auto known = providerNamed(provider);
    if (m_isLoading || !known)
        return;
    cancelSignIn();
    m_errorMessage = QString();
    m_waitingProvider = provider;
    m_providerScope.start([this, known] { return runSignIn(*known); });
}

void AuthViewModel::cancelSignIn() {
    if (m_waitingProvider.value().isEmpty())
        return;
    m_providerScope.cancel();
    m_waitingProvider = QString();
}

Task<void> AuthViewModel::runSignIn(SocialProvider provider) {
    SocialAuthService& social = m_dependencies.social;
    std::function<Task<void>()> next;
    try {
        switch (provider) {
        case SocialProvider::google: {
            const GoogleAuthResult given = co_await social.signInWithGoogle();
            next = [this, given] { return loginWithGoogle(std::nullopt, given.code, given.redirectUri); };
            break;
        }
        case SocialProvider::yandex: {
            const QString given = co_await social.signInWithYandex();
            next = [this, given] { return loginWithYandex(given); };
            break;
        }
        case SocialProvider::vk: {
            const VKAuthResult given = co_await social.signInWithVK();
            next = [this, given] {
                return loginWithVK(given.silentToken, given.uuid, given.firstName, given.lastName);
            };
            break;
        }
        case SocialProvider::apple: {
            const AppleAuthResult given = co_await social.signInWithApple();
            next = [this, given] { return loginWithApple(given.identityToken, given.userID, given.nonce); };
            break;
        }
        }
    } catch (const SocialAuthError& error) {
        handleSocialAuthError(provider, error);
    }
    m_waitingProvider = QString();
    if (next)
        co_await next();
}

void AuthViewModel::handleSocialAuthError(SocialProvider provider, const SocialAuthError& error) {
    qCInfo(lcAuth).noquote() << "🌐 [AuthViewModel]" << nameOf(provider) << "page:" << error.what();
    if (error.code != SocialAuthError::Code::cancelled)
        m_errorMessage = u"Не удалось войти через %1. Попробуйте другой способ."_s.arg(nameOf(provider));
}

Task<void> AuthViewModel::loginWithGoogle(std::optional<QString> idToken, QString code, QString redirectUri) {
    return login(SocialProvider::google,
        [=, this] { return m_dependencies.authentication.googleLogin(idToken, code, redirectUri); });
}

Task<void> AuthViewModel::loginWithVK(
    QString silentToken, QString uuid, std::optional<QString> firstName, std::optional<QString> lastName) {
    return login(SocialProvider::vk,
        [=, this] { return m_dependencies.authentication.vkLogin(silentToken, uuid, firstName, lastName); });
}

Task<void> AuthViewModel::loginWithYandex(QString oauthToken) {
    return login(SocialProvider::yandex, [=, this] { return m_dependencies.authentication.yandexLogin(oauthToken); });
}

Task<void> AuthViewModel::loginWithApple(QString token, QString userID, QString nonce) {
    return login(
        SocialProvider::apple, [=, this] { return m_dependencies.authentication.appleLogin(token, userID, nonce); });
}

Task<void> AuthViewModel::login(SocialProvider provider, std::function<Task<AuthenticationResponse>()> request) {
    m_isLoading = true;
    m_errorMessage = QString();
    Secret token;
    try {
        const AuthenticationResponse response = co_await request();
        token = Secret(response.session.opaqueToken.toUtf8());
    } catch (const std::exception& error) {
        qCWarning(lcAuth).noquote() << "❌ [AuthViewModel]" << nameOf(provider) << "login:" << error.what();
        m_errorMessage = loginFailure(provider, error);
        m_isLoading = false;
        co_return;
    }
    co_await finishSignIn(token);
}

void AuthViewModel::changeEmail() {
    m_isEnterCodeStep = false;
    m_errorMessage = QString();
    m_countdown.stop();
}

void AuthViewModel::retryConnection() {
    m_hasNetworkError = false;
    m_scope.start([this] { return checkAuth(false); });
}

Task<void> AuthViewModel::checkAuth(bool showError) {
    m_isLoading = true;
    if (showError)
        m_errorMessage = QString();
    std::optional<User> user;
    bool isNetworkLoss = false;
    try {
        user = co_await m_dependencies.users.getSelf();
    } catch (const URLError& error) {
        isNetworkLoss = error.isNetworkLoss();
        qCWarning(lcAuth).noquote() << "❌ [AuthViewModel] checkAuth:" << error.description;
    } catch (const std::exception& error) {
        qCWarning(lcAuth).noquote() << "❌ [AuthViewModel] checkAuth:" << error.what();
    }
    const bool isSignedIn = user.has_value();
    if (!isSignedIn) {
        m_hasNetworkError = isNetworkLoss;
        if (showError)
            m_errorMessage = u"Ошибка авторизации. Попробуйте войти снова."_s;
    }
    setUser(std::move(user));
    m_isAuthenticated = isSignedIn;
    m_isLoading = false;
}

Task<void> AuthViewModel::refreshUserData() {
    if (!m_isAuthenticated)
        co_return;
    try {
        User user = co_await m_dependencies.users.getSelf();
        // Who has left meanwhile does not come back with it.
        if (m_user && m_user->id == user.id)
            setUser(std::move(user));
    } catch (const std::exception& error) {
        qCWarning(lcAuth).noquote() << "⚠️ [AuthViewModel] Failed to refresh user data:" << error.what();
    }
}

void AuthViewModel::logout() {
    m_scope.cancel();
    m_providerScope.cancel();
    m_isLoading = false;
    m_isDeletingAccount = false;
    m_deleteAccountError = QString();
    m_waitingProvider = QString();
    m_dependencies.disconnectChat();
    setUser(std::nullopt);
    m_hasNetworkError = false; // of a check long ago: the way leads to the sign-in form
    m_isAuthenticated = false;
    m_errorMessage = QString();
    m_isEnterCodeStep = false;
    m_email = QString();
    m_countdown.stop();
    m_scope.start([this]() -> Task<void> { co_await m_dependencies.client.setAuthToken(Secret()); });
}

Task<void> AuthViewModel::deleteAccount() {
    co_await m_dependencies.client.requestData(u"/user"_s, "DELETE");
    logout();
}

void AuthViewModel::performDeleteAccount() {
    if (!m_isDeletingAccount)
        m_scope.start([this] { return runDeleteAccount(); });
}

Task<void> AuthViewModel::runDeleteAccount() {
    m_isDeletingAccount = true;
    m_deleteAccountError = QString();
    try {
        co_await deleteAccount();
    } catch (const std::exception& error) {
        qCWarning(lcAuth).noquote() << "❌ [AuthViewModel] The account could not be deleted:" << error.what();
        m_deleteAccountError = deleteAccountFailure(error);
    }
    m_isDeletingAccount = false;
}

void AuthViewModel::dismissDeleteAccountError() {
    m_deleteAccountError = QString();
}

QString AuthViewModel::deleteAccountErrorTitle() const {
    return u"Не удалось удалить аккаунт"_s;
}

QStringList AuthViewModel::providers() const {
    QStringList names;
    for (const SocialProvider provider : socialProviders)
        names.append(nameOf(provider));
    return names;
}

QStringList AuthViewModel::configuredProviders() const {
    QStringList names;
    for (const SocialProvider provider : socialProviders) {
        if (m_dependencies.social.isConfigured(provider))
            names.append(nameOf(provider));
    }
    return names;
}

QString AuthViewModel::displayName() const {
    return m_user ? m_user->displayName() : QString();
}

QString AuthViewModel::userEmail() const {
    return m_user ? m_user->email.value_or(QString()) : QString();
}

QString AuthViewModel::initials() const {
    QString result;
    const QStringList words = displayName().split(u' ', Qt::SkipEmptyParts);
    for (const QString& word : words.mid(0, 2))
        result += word.at(0).toUpper();
    return result;
}

void AuthViewModel::setUser(std::optional<User> user) {
    if (m_user == user)
        return;
    m_user = std::move(user);
    emit userChanged();
}

}
