#include "Shell/AuthViewModel.h"

#include "Backend/APIClient.h"
#include "Backend/AuthenticationService.h"
#include "Backend/UsersService.h"
#include "Log.h"

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
    co_await m_dependencies.client.setAuthToken(token);
    co_await checkAuth(true);
    if (m_isAuthenticated) {
        // Whoever comes back to the form later begins with the address.
        m_isEnterCodeStep = false;
        m_countdown.stop();
    }
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
        std::optional<User> user = co_await m_dependencies.users.getSelf();
        setUser(std::move(user));
    } catch (const std::exception& error) {
        qCWarning(lcAuth).noquote() << "⚠️ [AuthViewModel] Failed to refresh user data:" << error.what();
    }
}

void AuthViewModel::logout() {
    m_scope.cancel();
    m_isLoading = false;
    m_dependencies.disconnectChat();
    setUser(std::nullopt);
    m_isAuthenticated = false;
    m_errorMessage = QString();
    m_isEnterCodeStep = false;
    m_email = QString();
    m_countdown.stop();
    m_scope.start([this]() -> Task<void> { co_await m_dependencies.client.setAuthToken(Secret()); });
}

QString AuthViewModel::displayName() const {
    return m_user ? m_user->displayName() : QString();
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
