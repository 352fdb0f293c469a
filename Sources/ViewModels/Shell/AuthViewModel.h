#pragma once

#include "Backend/APIError.h"
#include "Secret.h"
#include "Shell/ResendCountdown.h"
#include "SignIn/SocialProvider.h"
#include "TaskScope.h"
#include "User.h"

#include <optional>

namespace Korvi {

class APIClient;
class AuthenticationService;
class SocialAuthError;
class SocialAuthService;
class UsersService;
struct AuthenticationResponse;

// Who is signed in, and the way there. One instance, owned by the application object; main thread only.
class AuthViewModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("owned by the application")
    Q_PROPERTY(bool isAuthenticated READ isAuthenticated NOTIFY isAuthenticatedChanged BINDABLE bindableIsAuthenticated)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY isLoadingChanged BINDABLE bindableIsLoading)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged BINDABLE bindableErrorMessage)
    Q_PROPERTY(bool isInitialCheckComplete READ isInitialCheckComplete NOTIFY isInitialCheckCompleteChanged BINDABLE
            bindableIsInitialCheckComplete)
    Q_PROPERTY(bool hasNetworkError READ hasNetworkError NOTIFY hasNetworkErrorChanged BINDABLE bindableHasNetworkError)
    Q_PROPERTY(bool isEnterCodeStep READ isEnterCodeStep NOTIFY isEnterCodeStepChanged BINDABLE bindableIsEnterCodeStep)
    Q_PROPERTY(QString email READ email NOTIFY emailChanged BINDABLE bindableEmail)
    // Of the signed-in user; empty without one.
    Q_PROPERTY(QString displayName READ displayName NOTIFY userChanged)
    Q_PROPERTY(QString initials READ initials NOTIFY userChanged)
    Q_PROPERTY(QString userEmail READ userEmail NOTIFY userChanged)
    Q_PROPERTY(Korvi::ResendCountdown* countdown READ countdown CONSTANT)
    // Names of the providers one can sign in with, as the user reads them, and of those that this build knows.
    Q_PROPERTY(QStringList providers READ providers CONSTANT)
    Q_PROPERTY(QStringList configuredProviders READ configuredProviders CONSTANT)
    // The one whose page is open in the browser; empty when none is.
    Q_PROPERTY(
        QString waitingProvider READ waitingProvider NOTIFY waitingProviderChanged BINDABLE bindableWaitingProvider)
    Q_PROPERTY(bool isDeletingAccount READ isDeletingAccount NOTIFY isDeletingAccountChanged BINDABLE
            bindableIsDeletingAccount)
    // Why the account is still there, under deleteAccountErrorTitle; empty when nothing failed.
    Q_PROPERTY(QString deleteAccountError READ deleteAccountError NOTIFY deleteAccountErrorChanged BINDABLE
            bindableDeleteAccountError)
    Q_PROPERTY(QString deleteAccountErrorTitle READ deleteAccountErrorTitle CONSTANT)

public:
    struct Dependencies {
        APIClient& client;
        AuthenticationService& authentication;
        UsersService& users;
        SocialAuthService& social;
        Scheduler& scheduler;
        // Ends the chat socket when the user leaves.
        std::function<void()> disconnectChat;
    };

    explicit AuthViewModel(Dependencies dependencies, QObject* parent = nullptr);
    ~AuthViewModel() override;

    // The first check of the stored token; sets isInitialCheckComplete in any case.
    void start();

    Q_INVOKABLE void requestEmailCode(const QString& email);
    Q_INVOKABLE void resendCode();
    Q_INVOKABLE void validateCode(const QString& code);
    Q_INVOKABLE void changeEmail(); // back from the code to the address; the address stays in the field
    // Opens the provider's page in the browser and waits for it; ends an attempt that already waits.
    Q_INVOKABLE void signInWith(const QString& provider);
    Q_INVOKABLE void cancelSignIn(); // only while waitingProvider is set; nothing else changes
    Q_INVOKABLE void retryConnection();
    Q_INVOKABLE void logout();
    // Deletes the account and signs out, or says why not in deleteAccountError.
    Q_INVOKABLE void performDeleteAccount();
    Q_INVOKABLE void dismissDeleteAccountError();

    // The second step of each way: what the provider gave, shown to the service. A failure goes into errorMessage.
    Task<void> loginWithApple(QString token, QString userID, QString nonce);
    Task<void> loginWithGoogle(std::optional<QString> idToken, QString code, QString redirectUri);
    Task<void> loginWithVK(
        QString silentToken, QString uuid, std::optional<QString> firstName, std::optional<QString> lastName);
    Task<void> loginWithYandex(QString oauthToken);

    // Fails with APIError or URLError, and then nobody is signed out.
    Task<void> deleteAccount();
    // A failure changes nothing: a failing refresh never signs anyone out.
    Task<void> refreshUserData();
    Task<void> checkAuth(bool showError);

    const std::optional<User>& user() const { return m_user; }
    bool isAuthenticated() const { return m_isAuthenticated; }
    bool isLoading() const { return m_isLoading; }
    QString errorMessage() const { return m_errorMessage; } // empty when absent
    bool isInitialCheckComplete() const { return m_isInitialCheckComplete; }
    bool hasNetworkError() const { return m_hasNetworkError; }
    bool isEnterCodeStep() const { return m_isEnterCodeStep; }
    QString email() const { return m_email; }
    QString displayName() const;
    QString initials() const;
    QString userEmail() const;
    ResendCountdown* countdown() { return &m_countdown; }
    QStringList providers() const;
    QStringList configuredProviders() const;
    QString waitingProvider() const { return m_waitingProvider; }
    bool isDeletingAccount() const { return m_isDeletingAccount; }
    QString deleteAccountError() const { return m_deleteAccountError; }
    QString deleteAccountErrorTitle() const;

    QBindable<bool> bindableIsAuthenticated() { return &m_isAuthenticated; }
    QBindable<bool> bindableIsLoading() { return &m_isLoading; }
    QBindable<QString> bindableErrorMessage() { return &m_errorMessage; }
    QBindable<bool> bindableIsInitialCheckComplete() { return &m_isInitialCheckComplete; }
    QBindable<bool> bindableHasNetworkError() { return &m_hasNetworkError; }
    QBindable<bool> bindableIsEnterCodeStep() { return &m_isEnterCodeStep; }
    QBindable<QString> bindableEmail() { return &m_email; }
    QBindable<QString> bindableWaitingProvider() { return &m_waitingProvider; }
    QBindable<bool> bindableIsDeletingAccount() { return &m_isDeletingAccount; }
    QBindable<QString> bindableDeleteAccountError() { return &m_deleteAccountError; }

signals:
    void userChanged();
    void isAuthenticatedChanged();
    void isLoadingChanged();
    void errorMessageChanged();
    void isInitialCheckCompleteChanged();
    void hasNetworkErrorChanged();
    void isEnterCodeStepChanged();
    void emailChanged();
    void waitingProviderChanged();
    void isDeletingAccountChanged();
    void deleteAccountErrorChanged();

private:
    Task<void> runRequestEmailCode(QString email);
    Task<void> runValidateCode(QString code);
    Task<void> runSignIn(SocialProvider provider);
    Task<void> runDeleteAccount();
    Task<void> login(SocialProvider provider, std::function<Task<AuthenticationResponse>()> request);
    Task<void> finishSignIn(Secret token);
    void handleSocialAuthError(SocialProvider provider, const SocialAuthError& error);
    void setUser(std::optional<User> user);

    Dependencies m_dependencies;
    std::optional<User> m_user;
    ResendCountdown m_countdown;

    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(
        AuthViewModel, bool, m_isAuthenticated, false, &AuthViewModel::isAuthenticatedChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AuthViewModel, bool, m_isLoading, false, &AuthViewModel::isLoadingChanged)
    Q_OBJECT_BINDABLE_PROPERTY(AuthViewModel, QString, m_errorMessage, &AuthViewModel::errorMessageChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(
        AuthViewModel, bool, m_isInitialCheckComplete, false, &AuthViewModel::isInitialCheckCompleteChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(
        AuthViewModel, bool, m_hasNetworkError, false, &AuthViewModel::hasNetworkErrorChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(
        AuthViewModel, bool, m_isEnterCodeStep, false, &AuthViewModel::isEnterCodeStepChanged)
    Q_OBJECT_BINDABLE_PROPERTY(AuthViewModel, QString, m_email, &AuthViewModel::emailChanged)
    Q_OBJECT_BINDABLE_PROPERTY(AuthViewModel, QString, m_waitingProvider, &AuthViewModel::waitingProviderChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(
        AuthViewModel, bool, m_isDeletingAccount, false, &AuthViewModel::isDeletingAccountChanged)
    Q_OBJECT_BINDABLE_PROPERTY(AuthViewModel, QString, m_deleteAccountError, &AuthViewModel::deleteAccountErrorChanged)

    TaskScope m_scope; // last: its tasks end before anything they use
    TaskScope m_providerScope;
};

}
