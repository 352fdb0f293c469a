#pragma once

#include "Artifacts/ArtifactPrinter.h"
#include "Backend/APIClient.h"
#include "Backend/AuthenticationService.h"
#include "Backend/UsersService.h"
#include "Cache/DataCacheManager.h"
#include "Chat/ArtifactExport.h"
#include "Chat/ChatService.h"
#include "Chat/ChatViewModel.h"
#include "Chat/ComposerAttachments.h"
#include "DesktopAppearance.h"
#include "Linux/BrowserAuthentication.h"
#include "Linux/DesktopNotifications.h"
#include "Linux/LoginSleepMonitor.h"
#include "Linux/QtClipboard.h"
#include "Linux/QtFileTransfer.h"
#include "Linux/QtHttpTransport.h"
#include "Linux/QtScheduler.h"
#include "Linux/QtWebSocketTransport.h"
#include "Linux/RoutePathMonitor.h"
#include "Linux/SecretServiceKeychain.h"
#include "Linux/SystemClock.h"
#include "Linux/ThreadWorkers.h"
#include "Linux/XdgDesktop.h"
#include "Markdown/FormulaEngine.h"
#include "Media/FileDownloads.h"
#include "NotificationCenter.h"
#include "Scenes.h"
#include "Shell/AIDataConsent.h"
#include "Shell/AboutViewModel.h"
#include "Shell/AuthViewModel.h"
#include "Shell/CacheManager.h"
#include "Shell/DeepLinkHandler.h"
#include "Shell/HomeViewModel.h"
#include "Shell/NetworkMonitor.h"
#include "Shell/Onboarding.h"
#include "Shell/ReviewManager.h"
#include "Shell/SceneActivation.h"
#include "Shell/TaskNotificationManager.h"
#include "Shell/ThemeManager.h"
#include "SignIn/SocialAuthService.h"

namespace Korvi {

class SingleInstance;

// The composition root: makes the one instance of each long-lived object and hands them on through constructors.
// The order of the members is the order of their making; what is below may use what is above.
class KorviApp : public QObject {
    Q_OBJECT

public:
    // `paths` stands in for the machine's network; null for the real one.
    explicit KorviApp(std::unique_ptr<PathMonitor> paths = nullptr, QObject* parent = nullptr);

    // Shows the window and starts the first check of the stored token. False when the window cannot be made.
    bool start();

    // Does what later starts of the program ask for. A URL that no sign-in waits for is ignored.
    void follow(const SingleInstance& instance);

    // For tests that drive the real application.
    AuthViewModel& auth() { return m_auth; }
    ChatViewModel& chat() { return m_chat; }
    HomeViewModel& home() { return m_home; }
    TaskNotificationManager& taskNotifications() { return m_taskNotifications; }
    DeepLinkHandler& deepLinks() { return m_deepLinks; }
    const Scenes& scenes() const { return m_scenes; }

private:
    void tokenDied();
    void tellOfAnswers();

    Info m_info;
    SystemClock m_clock;
    SystemRandom m_random;
    QtScheduler m_scheduler;
    Defaults m_defaults;
    Defaults m_groupDefaults;
    SecretServiceKeychain m_keychain;
    QtHttpTransport m_http;
    QtWebSocketTransport m_sockets;
    ThreadWorkers m_workers;
    QtClipboard m_clipboard;
    DesktopNotifications m_desktopNotifications;
    LoginSleepMonitor m_sleep;
    NotificationCenter m_notifications;
    AuthTokenStore m_tokens;
    APIClient m_client;
    AuthenticationService m_authentication;
    UsersService m_users;
    BrowserAuthentication m_browser;
    SocialAuthService m_social;
    ChatService m_chatService;
    DataCacheManager m_cache;
    TaskNotificationManager m_taskNotifications;
    AttachmentIntake m_intake;
    AttachmentUploader m_uploader;
    ComposerAttachments m_attachments;
    AuthViewModel m_auth;
    ChatViewModel m_chat;
    std::unique_ptr<PathMonitor> m_paths;
    NetworkMonitor m_network;
    DeepLinkHandler m_deepLinks;
    AIDataConsent m_consent;
    Onboarding m_onboarding;
    HomeViewModel m_home;
    ReviewManager m_reviews;
    SceneActivation m_activation;
    ThemeManager m_theme;
    CacheManager m_caches;
    AboutViewModel m_about;
    DesktopAppearance m_appearance;
    FormulaEngine m_formulas;
    XdgDesktop m_desktop;
    QtFileTransfer m_transfer;
    FileDownloads m_downloads;
    ArtifactPrinter m_printer;
    ArtifactExport m_artifactFiles;
    Scenes m_scenes;
    TaskScope m_scope; // last: its tasks end before anything they use
};

}
