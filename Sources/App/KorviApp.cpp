#include "KorviApp.h"

#include "SingleInstance.h"

#include <QCryptographicHash>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QStandardPaths>

namespace Korvi {

using namespace Qt::Literals;

namespace {

QString besideProgram(const QString& file) {
    return QCoreApplication::applicationDirPath() + u'/' + file;
}

// Beside the program, unless the environment names another one: several programs of one build can so talk to
// several services.
QString infoPath() {
    const QString named = qEnvironmentVariable("KORVI_INFO");
    return named.isEmpty() ? besideProgram(u"Info.json"_s) : named;
}

// A program with another Info.json is another application: neither clears the other's folder.
QString attachmentsPath() {
    const QByteArray name = QCryptographicHash::hash(infoPath().toUtf8(), QCryptographicHash::Sha1).toHex().left(16);
    return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + u"/korvi/attachments/"_s +
        QString::fromLatin1(name);
}

QString dataPath(const QString& file) {
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u'/' + file;
}

}

KorviApp::KorviApp(std::unique_ptr<PathMonitor> paths, QObject* parent)
    : QObject(parent)
    , m_info(Info::fromFile(infoPath()))
    , m_defaults(dataPath(u"korvi/defaults.sqlite"_s))
    , m_groupDefaults(dataPath(u"group.com.korvihub.app/defaults.sqlite"_s))
    , m_desktopNotifications(u"Korvi"_s, u"korvi"_s)
    , m_tokens(m_keychain, m_defaults, &m_groupDefaults)
    , m_client({m_http, m_tokens, m_defaults, m_notifications, m_scheduler}, m_info)
    , m_authentication(m_client)
    , m_users(m_client)
    , m_browser(QDesktopServices::openUrl, m_random)
    , m_social({m_browser, m_random}, SocialAuthConfiguration::fromInfo(m_info), m_client.baseURL())
    , m_chatService({m_client, m_sockets, m_scheduler, m_random})
    , m_cache(m_defaults, m_clock)
    , m_taskNotifications(m_desktopNotifications, m_defaults, m_clock, m_notifications)
    , m_intake(attachmentsPath(), m_workers, m_random)
    , m_uploader(m_client, m_workers, m_random)
    , m_attachments({m_intake, m_uploader, m_clipboard, m_random})
    , m_auth({m_client, m_authentication, m_users, m_social, m_scheduler, [this] { m_home.forgetConversations(); }})
    , m_chat(
          {m_chatService, m_users, m_cache, m_defaults, m_scheduler, m_clock, m_random, m_notifications, m_attachments})
    , m_paths(paths ? std::move(paths) : std::make_unique<RoutePathMonitor>(QUrl(m_client.baseURL())))
    , m_network(*m_paths, m_notifications)
    , m_consent(m_defaults)
    , m_onboarding(m_defaults, [this] { return m_auth.isAuthenticated(); })
    , m_home({m_auth, m_chat, m_chatService, m_notifications, m_deepLinks, m_onboarding})
    , m_reviews(m_defaults, m_info, m_clock, m_scheduler)
    , m_activation(m_auth, m_chat, m_reviews, m_sleep, m_clock)
    , m_theme(m_defaults)
    , m_caches({
          {CacheManager::Kind::data, [this] { return m_cache.diskCacheSize(); }, [this] { m_cache.clearAll(); }},
      })
    , m_about(m_info)
    , m_formulas(besideProgram(u"korvi-formulas"_s), besideProgram(u"web"_s), m_scheduler)
    , m_downloads({m_transfer, m_desktop},
          {QStandardPaths::writableLocation(QStandardPaths::DownloadLocation),
              QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + u"/korvi/opened"_s})
    , m_artifactFiles({m_chatService, m_printer, m_desktop})
    , m_scenes(
          {m_auth, m_chat, m_home, m_consent, m_onboarding, m_theme, m_caches, m_about, m_downloads, m_artifactFiles},
          m_formulas) {
    connect(&m_notifications, &NotificationCenter::didReceiveUnauthorizedError, this, &KorviApp::tokenDied);
    connect(&m_notifications, &NotificationCenter::didCompleteAIResponse, this, [this] {
        m_reviews.recordMessage();
        m_reviews.requestReviewIfAppropriate();
    });
    connect(&m_appearance, &DesktopAppearance::changed, this,
        [this] { m_theme.setDesktop(m_appearance.scheme(), m_appearance.reducedMotion()); });
    connect(qApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        m_taskNotifications.setInFront(state == Qt::ApplicationActive);
        if (state == Qt::ApplicationActive)
            m_activation.becameActive();
        else
            m_activation.becameInactive();
    });
    tellOfAnswers();
    m_browser.onReturned = [this] { m_scenes.raiseMain(); };
    m_defaults.onProblemChanged = [this] { m_scenes.setNotice(m_defaults.problem()); };
}

bool KorviApp::start() {
    if (!m_scenes.openMain(m_defaults.problem()))
        return false;
    m_auth.start();
    m_network.start();
    return true;
}

void KorviApp::follow(const SingleInstance& instance) {
    connect(&instance, &SingleInstance::activated, &m_scenes, &Scenes::raiseMain);
    connect(&instance, &SingleInstance::urlOpened, this, [this](const QUrl& url) { m_browser.take(url); });
}

// What the user is told outside of the window, and the way back into it.
void KorviApp::tellOfAnswers() {
    connect(&m_chat, &ChatViewModel::longTaskBegan, &m_taskNotifications, &TaskNotificationManager::trackGeneration);
    connect(&m_chat, &ChatViewModel::answerReady, &m_taskNotifications, &TaskNotificationManager::answerCompleted);
    connect(&m_chat, &ChatViewModel::generationEnded, &m_taskNotifications, &TaskNotificationManager::clearGeneration);
    connect(&m_taskNotifications, &TaskNotificationManager::chatRequested, this,
        [this](qint64 chatId, const QString& activationToken) {
            if (!activationToken.isEmpty()) // where a window must not come to the front by itself
                qputenv("XDG_ACTIVATION_TOKEN", activationToken.toUtf8());
            m_scenes.raiseMain();
            m_deepLinks.setPendingChatId(chatId);
        });
}

// The service knows the token no longer: the sign-in form says so.
void KorviApp::tokenDied() {
    m_chat.sessionEnded();
    if (m_auth.isAuthenticated())
        m_scope.start([this] { return m_auth.checkAuth(true); });
}

}
