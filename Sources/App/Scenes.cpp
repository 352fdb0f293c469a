#include "Scenes.h"

#include "Chat/ArtifactExport.h"
#include "Chat/ChatViewModel.h"
#include "Markdown/FormulaEngine.h"
#include "Media/FileDownloads.h"
#include "Shell/AIDataConsent.h"
#include "Shell/AboutViewModel.h"
#include "Shell/AuthViewModel.h"
#include "Shell/CacheManager.h"
#include "Shell/HomeViewModel.h"
#include "Shell/Onboarding.h"
#include "Shell/ThemeManager.h"

#include <QQmlComponent>
#include <QWindow>

namespace Korvi {

using namespace Qt::Literals;

namespace {

void raise(QWindow* window) {
    window->setWindowStates(window->windowStates() & ~Qt::WindowMinimized);
    window->show();
    window->raise();
    window->requestActivate();
}

}

Scenes::Scenes(ViewModels viewModels, FormulaEngine& formulas, QObject* parent)
    : QObject(parent)
    , m_viewModels(viewModels) {
    formulas.serve(m_engine);
    connect(&m_viewModels.home, &HomeViewModel::settingsRequested, this, &Scenes::openSettings);
    connect(&m_viewModels.auth, &AuthViewModel::isAuthenticatedChanged, this, [this] {
        if (!m_viewModels.auth.isAuthenticated())
            closeSettings();
    });
    // A guide that the settings ask for shows in the main window.
    connect(&m_viewModels.onboarding, &Onboarding::kindChanged, this, [this] {
        if (m_settings && m_viewModels.onboarding.kind())
            raiseMain();
    });
}

Scenes::~Scenes() {
    if (m_settings)
        m_settings->disconnect(this);
}

bool Scenes::openMain(const QString& notice) {
    m_engine.setInitialProperties({
        {u"auth"_s, QVariant::fromValue(&m_viewModels.auth)},
        {u"chat"_s, QVariant::fromValue(&m_viewModels.chat)},
        {u"home"_s, QVariant::fromValue(&m_viewModels.home)},
        {u"consent"_s, QVariant::fromValue(&m_viewModels.consent)},
        {u"onboarding"_s, QVariant::fromValue(&m_viewModels.onboarding)},
        {u"theme"_s, QVariant::fromValue(&m_viewModels.theme)},
        {u"downloads"_s, QVariant::fromValue(&m_viewModels.downloads)},
        {u"artifactFiles"_s, QVariant::fromValue(&m_viewModels.artifactFiles)},
        {u"notice"_s, notice},
    });
    // An import by name, unlike an address of a file, also registers the module's C++ types.
    m_engine.loadData("import Korvi.Views\nMainWindow {}");
    return mainWindow() != nullptr;
}

void Scenes::openSettings() {
    if (!m_settings) {
        QQmlComponent component(&m_engine);
        component.setData("import Korvi.Views\nSettingsWindow {}", {});
        m_settings.reset(component.createWithInitialProperties({
            {u"auth"_s, QVariant::fromValue(&m_viewModels.auth)},
            {u"onboarding"_s, QVariant::fromValue(&m_viewModels.onboarding)},
            {u"theme"_s, QVariant::fromValue(&m_viewModels.theme)},
            {u"caches"_s, QVariant::fromValue(&m_viewModels.caches)},
            {u"about"_s, QVariant::fromValue(&m_viewModels.about)},
        }));
        QWindow* window = settingsWindow();
        if (!window) {
            qWarning().noquote() << "⚠️ [Scenes] No settings:" << component.errorString();
            return;
        }
        window->setTransientParent(mainWindow());
        connect(window, &QWindow::visibleChanged, this, [this](bool isVisible) {
            if (!isVisible)
                closeSettings();
        });
    }
    raise(settingsWindow());
}

void Scenes::closeSettings() {
    // Not at once: it may be the window itself that says so.
    if (QObject* closed = m_settings.release()) {
        closed->deleteLater();
        raiseMain();
    }
}

void Scenes::raiseMain() {
    if (QWindow* window = mainWindow())
        raise(window);
}

void Scenes::setNotice(const QString& notice) {
    if (QWindow* window = mainWindow())
        window->setProperty("notice", notice);
}

QWindow* Scenes::mainWindow() const {
    return qobject_cast<QWindow*>(m_engine.rootObjects().value(0));
}

QWindow* Scenes::settingsWindow() const {
    return qobject_cast<QWindow*>(m_settings.get());
}

}
