#pragma once

#include "Shell/AppTheme.h"

#include <QObject>
#include <QQmlEngine>

namespace Korvi {

class Defaults;

// How the application looks: the theme that the user has chosen, the desktop's where they left it open, and the size
// of the text. Changes show at once and are kept.
class ThemeManager : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("owned by the application")
    Q_PROPERTY(QString currentTheme READ currentThemeName NOTIFY changed) // "system", "light" or "dark"
    Q_PROPERTY(QStringList themes READ themes CONSTANT)                   // the names, in the order of their cards
    Q_PROPERTY(QString scheme READ scheme NOTIFY changed) // what to draw; "system" when nobody has said anything
    Q_PROPERTY(bool reducedMotion READ reducedMotion NOTIFY changed)
    Q_PROPERTY(int chatFontSize READ chatFontSize WRITE setChatFontSize NOTIFY changed) // pixels
    Q_PROPERTY(int minimumFontSize MEMBER minimumFontSize CONSTANT)
    Q_PROPERTY(int maximumFontSize MEMBER maximumFontSize CONSTANT)
    Q_PROPERTY(int defaultFontSize MEMBER defaultFontSize CONSTANT)

public:
    static constexpr int minimumFontSize = 11;
    static constexpr int maximumFontSize = 20;
    static constexpr int defaultFontSize = 13;

    explicit ThemeManager(Defaults& defaults, QObject* parent = nullptr);

    AppTheme currentTheme() const { return m_currentTheme; }
    void setTheme(AppTheme theme);
    // Absent when the desktop decides.
    std::optional<AppTheme> colorScheme() const;
    // What the desktop says of itself: "system" (nothing), "light" or "dark".
    void setDesktop(const QString& scheme, bool reducedMotion);

    Q_INVOKABLE void chooseTheme(const QString& name);
    Q_INVOKABLE QString label(const QString& name) const;

    QString currentThemeName() const;
    QStringList themes() const;
    QString scheme() const;
    bool reducedMotion() const { return m_reducedMotion; }
    int chatFontSize() const { return m_chatFontSize; }
    void setChatFontSize(int size); // outside of the range: its nearer end

signals:
    void changed();

private:
    Defaults& m_defaults;
    AppTheme m_currentTheme = AppTheme::system;
    QString m_desktopScheme = QStringLiteral("system");
    bool m_reducedMotion = false;
    int m_chatFontSize = defaultFontSize;
};

}
