#pragma once

#include "Backend/APIClient.h"
#include "Backend/AuthenticationService.h"
#include "Backend/UsersService.h"
#include "Chat/ChatService.h"
#include "Chat/ChatViewModel.h"
#include "DesktopAppearance.h"
#include "Linux/BrowserAuthentication.h"
#include "Linux/QtHttpTransport.h"
#include "Linux/QtScheduler.h"
#include "Linux/QtWebSocketTransport.h"
#include "Linux/SecretServiceKeychain.h"
#include "Linux/SystemClock.h"
#include "NotificationCenter.h"
#include "Shell/AuthViewModel.h"
#include "SignIn/SocialAuthService.h"

#include <QQmlApplicationEngine>

namespace Korvi {

class SingleInstance;

// The composition root: makes the one instance of each long-lived object and hands them on through constructors.
// The order of the members is the order of their making; what is below may use what is above.
class KorviApp : public QObject {
    Q_OBJECT

public:
    explicit KorviApp(QObject* parent = nullptr);

    // Shows the window and starts the first check of the stored token. False when the window cannot be made.
    bool start();

    // Does what later starts of the program ask for. A URL that no sign-in waits for is ignored.
    void follow(const SingleInstance& instance);

    // For tests that drive the real application.
    AuthViewModel& auth() { return m_auth; }
    ChatViewModel& chat() { return m_chat; }
    QObject* window() const { return m_engine.rootObjects().value(0); }

private:
    void raiseWindow();
    void userChanged();
    void forgetConversations();
    void tokenDied();
    void applyAppearance();

    Info m_info;
    SystemClock m_clock;
    SystemRandom m_random;
    QtScheduler m_scheduler;
    Defaults m_defaults;
    Defaults m_groupDefaults;
    SecretServiceKeychain m_keychain;
    QtHttpTransport m_http;
    QtWebSocketTransport m_sockets;
    NotificationCenter m_notifications;
    AuthTokenStore m_tokens;
    APIClient m_client;
    AuthenticationService m_authentication;
    UsersService m_users;
    BrowserAuthentication m_browser;
    SocialAuthService m_social;
    ChatService m_chatService;
    AuthViewModel m_auth;
    ChatViewModel m_chat;
    DesktopAppearance m_appearance;
    QQmlApplicationEngine m_engine;
    QString m_userId;  // whose conversations the view models hold; empty for nobody's
    TaskScope m_scope; // last: its tasks end before anything they use
};

}
