#pragma once

#include "Backend/APIError.h"
#include "Shell/ResendCountdown.h"
#include "TaskScope.h"
#include "User.h"

#include <optional>

namespace Korvi {

class APIClient;
class AuthenticationService;
class UsersService;

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
    Q_PROPERTY(Korvi::ResendCountdown* countdown READ countdown CONSTANT)

public:
    struct Dependencies {
        APIClient& client;
        AuthenticationService& authentication;
        UsersService& users;
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
    Q_INVOKABLE void retryConnection();
    Q_INVOKABLE void logout();

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
    ResendCountdown* countdown() { return &m_countdown; }

    QBindable<bool> bindableIsAuthenticated() { return &m_isAuthenticated; }
    QBindable<bool> bindableIsLoading() { return &m_isLoading; }
    QBindable<QString> bindableErrorMessage() { return &m_errorMessage; }
    QBindable<bool> bindableIsInitialCheckComplete() { return &m_isInitialCheckComplete; }
    QBindable<bool> bindableHasNetworkError() { return &m_hasNetworkError; }
    QBindable<bool> bindableIsEnterCodeStep() { return &m_isEnterCodeStep; }
    QBindable<QString> bindableEmail() { return &m_email; }

signals:
    void userChanged();
    void isAuthenticatedChanged();
    void isLoadingChanged();
    void errorMessageChanged();
    void isInitialCheckCompleteChanged();
    void hasNetworkErrorChanged();
    void isEnterCodeStepChanged();
    void emailChanged();

private:
    Task<void> runRequestEmailCode(QString email);
    Task<void> runValidateCode(QString code);
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

    TaskScope m_scope; // last: its tasks end before anything they use
};

}
