#pragma once

#include <QObject>
#include <QQmlEngine>

#include <functional>
#include <optional>

namespace Korvi {

class Defaults;

enum class KorviOnboardingKind { app, agent };

// Which first-run guide shows, if any, and which the user has seen.
class Onboarding : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("owned by the application")
    Q_PROPERTY(QString kind READ kindName NOTIFY kindChanged) // "app" or "agent"; empty while no guide shows

public:
    // `isSignedIn`: guides are for those who are.
    Onboarding(Defaults& defaults, std::function<bool()> isSignedIn, QObject* parent = nullptr);

    void showAppOnboardingIfNeeded();
    void showAgentOnboardingIfNeeded();
    // The section of the main window that is seen: "chats", "media", "projects", "agent" or "agentSkills".
    Q_INVOKABLE void sectionChanged(const QString& section);
    // Shows a guide again.
    Q_INVOKABLE void replay(const QString& kind);
    // The guide that shows was read to its end or skipped.
    Q_INVOKABLE void complete();
    // The user leaves: the guide closes and counts as not seen.
    void close();

    std::optional<KorviOnboardingKind> kind() const { return m_kind; }
    QString kindName() const;

signals:
    void kindChanged();

private:
    bool hasSeen(KorviOnboardingKind kind) const;
    void show(std::optional<KorviOnboardingKind> kind);

    Defaults& m_defaults;
    std::function<bool()> m_isSignedIn;
    std::optional<KorviOnboardingKind> m_kind;
    QString m_section = QStringLiteral("chats");
};

}
