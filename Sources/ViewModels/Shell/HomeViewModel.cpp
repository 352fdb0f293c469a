#include "Shell/HomeViewModel.h"

#include "Chat/ChatService.h"
#include "Chat/ChatViewModel.h"
#include "Log.h"
#include "NotificationCenter.h"
#include "Shell/AuthViewModel.h"
#include "Shell/DeepLinkHandler.h"
#include "Shell/Onboarding.h"

namespace Korvi {

Q_LOGGING_CATEGORY(lcHome, "korvi.home", QtInfoMsg)

HomeViewModel::HomeViewModel(Dependencies dependencies, QObject* parent)
    : QObject(parent)
    , m_dependencies(dependencies)
    , m_bootstrap({
          .isAuthenticated = [this] { return m_dependencies.auth.isAuthenticated(); },
          .loadData = [this] { return m_dependencies.chat.loadData(); },
          .prefetchRelatedData =
              [this] { m_scope.start([this] { return m_dependencies.chat.prefetchRelatedData(); }); },
      }) {
    connect(&m_dependencies.auth, &AuthViewModel::isAuthenticatedChanged, this, &HomeViewModel::userChanged);
    connect(&m_dependencies.notifications, &NotificationCenter::networkDidBecomeAvailable, this,
        &HomeViewModel::networkBecameAvailable);
    connect(&m_dependencies.deepLinks, &DeepLinkHandler::chatRequested, this, &HomeViewModel::openPendingChat);
}

HomeViewModel::~HomeViewModel() = default;

void HomeViewModel::userChanged() {
    m_scope.cancel();
    m_bootstrap.reset();
    m_dependencies.onboarding.close();
    m_dependencies.chatService.disconnect();
    if (!m_dependencies.auth.isAuthenticated())
        return;
    // What was typed before the token died is still there for the same user, and for nobody else.
    const QString id = m_dependencies.auth.user()->id;
    if (id != m_userId) {
        forgetConversations();
        m_userId = id;
        m_dependencies.chat.restore(id);
    }
    m_scope.start([this] { return appear(); });
}

Task<void> HomeViewModel::appear() {
    co_await m_bootstrap.bootstrapChatDataIfNeeded(false);
    openPendingChat();
    m_dependencies.onboarding.showAppOnboardingIfNeeded();
    m_dependencies.onboarding.showAgentOnboardingIfNeeded();
}

void HomeViewModel::forgetConversations() {
    m_userId.clear();
    m_dependencies.chatService.disconnect();
    m_dependencies.chatService.discardPending();
    m_dependencies.chat.reset();
}

void HomeViewModel::retryConnection() {
    // Of two checks at a time the later one to end would have the last word.
    m_checks.cancel();
    m_checks.start([this] { return m_dependencies.auth.checkAuth(false); });
}

void HomeViewModel::networkBecameAvailable() {
    AuthViewModel& auth = m_dependencies.auth;
    if (auth.isAuthenticated()) {
        qCInfo(lcHome) << "📡 [HomeView] Network recovered — reconnecting";
        m_scope.start([this] { return recover(); });
    } else if (auth.isInitialCheckComplete() && auth.hasNetworkError()) {
        retryConnection();
    }
}

Task<void> HomeViewModel::recover() {
    m_dependencies.chatService.disconnect();
    co_await m_bootstrap.bootstrapChatDataIfNeeded(true);
    openPendingChat();
}

// A chat that was asked for before there is a main screen waits for it, and one that is not known yet for the load
// that may bring it.
void HomeViewModel::openPendingChat() {
    const std::optional<qint64> chatId = m_dependencies.deepLinks.pendingChatId();
    if (!m_dependencies.auth.isAuthenticated() || !chatId)
        return;
    const bool isKnown = m_dependencies.chat.chats()->find(*chatId) != nullptr;
    if (!isKnown && m_bootstrap.state() == ChatBootstrap::State::running)
        return;
    m_dependencies.deepLinks.setPendingChatId(std::nullopt);
    m_dependencies.chat.navigateToChat(*chatId);
}

}
