#include "KorviApp.h"

#include "SingleInstance.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QStandardPaths>
#include <QWindow>

namespace Korvi {

using namespace Qt::Literals;

namespace {

// Beside the program, unless the environment names another one: several programs of one build can so talk to
// several services.
QString infoPath() {
    const QString named = qEnvironmentVariable("KORVI_INFO");
    return named.isEmpty() ? QCoreApplication::applicationDirPath() + u"/Info.json"_s : named;
}

QString dataPath(const QString& file) {
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u'/' + file;
}

}

KorviApp::KorviApp(QObject* parent)
    : QObject(parent)
    , m_info(Info::fromFile(infoPath()))
    , m_defaults(dataPath(u"korvi/defaults.sqlite"_s))
    , m_groupDefaults(dataPath(u"group.com.korvihub.app/defaults.sqlite"_s))
    , m_tokens(m_keychain, m_defaults, &m_groupDefaults)
    , m_client({m_http, m_tokens, m_defaults, m_notifications, m_scheduler}, m_info)
    , m_authentication(m_client)
    , m_users(m_client)
    , m_browser(QDesktopServices::openUrl, m_random)
    , m_social({m_browser, m_random}, SocialAuthConfiguration::fromInfo(m_info), m_client.baseURL())
    , m_chatService({m_client, m_sockets, m_scheduler, m_random})
    , m_auth({m_client, m_authentication, m_users, m_social, m_scheduler, [this] { forgetConversations(); }})
    , m_chat({m_chatService, m_scheduler, m_clock, m_random, m_notifications}) {
    connect(&m_auth, &AuthViewModel::isAuthenticatedChanged, this, &KorviApp::userChanged);
    connect(&m_notifications, &NotificationCenter::didReceiveUnauthorizedError, this, &KorviApp::tokenDied);
    connect(&m_appearance, &DesktopAppearance::changed, this, &KorviApp::applyAppearance);
    m_browser.onReturned = [this] { raiseWindow(); };
}

bool KorviApp::start() {
    m_engine.setInitialProperties({
        {u"auth"_s, QVariant::fromValue(&m_auth)},
        {u"chat"_s, QVariant::fromValue(&m_chat)},
        {u"notice"_s, m_defaults.problem()},
    });
    // An import by name, unlike an address of a file, also registers the module's C++ types.
    m_engine.loadData("import Korvi.Views\nMainWindow {}");
    if (m_engine.rootObjects().isEmpty())
        return false;
    applyAppearance();
    m_defaults.onProblemChanged = [this] {
        m_engine.rootObjects().value(0)->setProperty("notice", m_defaults.problem());
    };
    m_auth.start();
    return true;
}

void KorviApp::follow(const SingleInstance& instance) {
    connect(&instance, &SingleInstance::activated, this, &KorviApp::raiseWindow);
    connect(&instance, &SingleInstance::urlOpened, this, [this](const QUrl& url) { m_browser.take(url); });
}

void KorviApp::raiseWindow() {
    auto* shown = qobject_cast<QWindow*>(window());
    if (!shown)
        return;
    shown->setWindowStates(shown->windowStates() & ~Qt::WindowMinimized);
    shown->show();
    shown->raise();
    shown->requestActivate();
}

void KorviApp::userChanged() {
    m_scope.cancel();
    m_chatService.disconnect();
    if (!m_auth.isAuthenticated())
        return;
    // What was typed before the token died is still there for the same user, and for nobody else.
    if (m_auth.user()->id != m_userId)
        forgetConversations();
    m_userId = m_auth.user()->id;
    m_scope.start([this] { return m_chat.loadData(); });
}

void KorviApp::forgetConversations() {
    m_userId.clear();
    m_chatService.disconnect();
    m_chatService.discardPending();
    m_chat.reset();
}

// The service knows the token no longer: the sign-in form says so.
void KorviApp::tokenDied() {
    if (m_auth.isAuthenticated())
        m_scope.start([this] { return m_auth.checkAuth(true); });
}

void KorviApp::applyAppearance() {
    for (QObject* window : m_engine.rootObjects()) {
        window->setProperty("scheme", m_appearance.scheme());
        window->setProperty("reducedMotion", m_appearance.reducedMotion());
    }
}

}
