#pragma once

#include "Shell/ChatBootstrap.h"

#include <QObject>
#include <QQmlEngine>

namespace Korvi {

class AuthViewModel;
class ChatService;
class ChatViewModel;
class DeepLinkHandler;
class NotificationCenter;
class Onboarding;

// The life of the main screen: what is loaded when it appears and when the network returns, which chat is asked for
// from outside, and whose conversations are kept when it goes.
class HomeViewModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("owned by the application")

public:
    struct Dependencies {
        AuthViewModel& auth;
        ChatViewModel& chat;
        ChatService& chatService;
        NotificationCenter& notifications;
        DeepLinkHandler& deepLinks;
        Onboarding& onboarding;
    };

    explicit HomeViewModel(Dependencies dependencies, QObject* parent = nullptr);
    ~HomeViewModel() override;

    // Asks again who is signed in; for the screen that says there is no network.
    Q_INVOKABLE void retryConnection();
    Q_INVOKABLE void openSettings() { emit settingsRequested(); }

    // Nothing of the user who leaves stays: neither what was said nor what was typed.
    void forgetConversations();

    const ChatBootstrap& bootstrap() const { return m_bootstrap; }

signals:
    void settingsRequested();

private:
    void userChanged();
    void networkBecameAvailable();
    void openPendingChat();
    Task<void> appear();
    Task<void> recover();

    Dependencies m_dependencies;
    ChatBootstrap m_bootstrap;
    QString m_userId;   // whose conversations the view models hold; empty for nobody's
    TaskScope m_checks; // of who is signed in; it outlives the main screen that a check brings or ends
    TaskScope m_scope;  // last: its tasks end before anything they use
};

}
