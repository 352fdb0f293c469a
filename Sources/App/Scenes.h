#pragma once

#include <QObject>
#include <QQmlApplicationEngine>

#include <memory>

class QWindow;

namespace Korvi {

class AIDataConsent;
class AboutViewModel;
class ArtifactExport;
class AuthViewModel;
class CacheManager;
class ChatViewModel;
class FileDownloads;
class FormulaEngine;
class HomeViewModel;
class Onboarding;
class ThemeManager;

// The windows: the main one, and the settings, which are made when somebody asks for them and gone when they are
// closed.
class Scenes : public QObject {
    Q_OBJECT

public:
    // What the windows show; all of it outlives them.
    struct ViewModels {
        AuthViewModel& auth;
        ChatViewModel& chat;
        HomeViewModel& home;
        AIDataConsent& consent;
        Onboarding& onboarding;
        ThemeManager& theme;
        CacheManager& caches;
        AboutViewModel& about;
        FileDownloads& downloads;
        ArtifactExport& artifactFiles;
    };

    Scenes(ViewModels viewModels, FormulaEngine& formulas, QObject* parent = nullptr);
    ~Scenes() override;

    // False when the window cannot be made.
    bool openMain(const QString& notice);
    void openSettings();
    void closeSettings();
    void raiseMain();
    // What is wrong with the place where settings are kept; empty when all is well.
    void setNotice(const QString& notice);

    QWindow* mainWindow() const;     // null before openMain()
    QWindow* settingsWindow() const; // null while it is closed

private:
    ViewModels m_viewModels;
    QQmlApplicationEngine m_engine;
    std::unique_ptr<QObject> m_settings;
};

}
