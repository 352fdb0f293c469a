#include "Shell/ThemeManager.h"

#include "Defaults.h"

#include <algorithm>
#include <utility>

namespace Korvi {

using namespace Qt::Literals;

namespace {

const auto themeKey = u"appTheme"_s;
const auto fontSizeKey = u"chatFontSize"_s;

const AppThemeEntry& entryOf(AppTheme theme) {
    return *std::ranges::find(appThemes, theme, &AppThemeEntry::theme);
}

}

ThemeManager::ThemeManager(Defaults& defaults, QObject* parent)
    : QObject(parent)
    , m_defaults(defaults) {
    const QString storedThemeRaw = m_defaults.string(themeKey).value_or(entryOf(AppTheme::system).rawValue.toString());
    const auto* entry = std::ranges::find(appThemes, QStringView(storedThemeRaw), &AppThemeEntry::rawValue);
    if (entry != std::end(appThemes))
        m_currentTheme = entry->theme;
    const qint64 size = m_defaults.integer(fontSizeKey).value_or(0);
    if (size > 0) // otherwise nobody has chosen one
        m_chatFontSize = static_cast<int>(std::clamp<qint64>(size, minimumFontSize, maximumFontSize));
}

void ThemeManager::setTheme(AppTheme theme) {
    m_defaults.setString(themeKey, entryOf(theme).rawValue.toString());
    if (std::exchange(m_currentTheme, theme) != theme)
        emit changed();
}

std::optional<AppTheme> ThemeManager::colorScheme() const {
    return m_currentTheme == AppTheme::system ? std::nullopt : std::optional(m_currentTheme);
}

void ThemeManager::setDesktop(const QString& scheme, bool reducedMotion) {
    m_desktopScheme = scheme;
    m_reducedMotion = reducedMotion;
    emit changed();
}

void ThemeManager::chooseTheme(const QString& name) {
    const auto* entry = std::ranges::find(appThemes, name, &AppThemeEntry::name);
    if (entry != std::end(appThemes))
        setTheme(entry->theme);
}

QString ThemeManager::label(const QString& name) const {
    const auto* entry = std::ranges::find(appThemes, name, &AppThemeEntry::name);
    return entry == std::end(appThemes) ? QString() : entry->rawValue.toString();
}

QString ThemeManager::currentThemeName() const {
    return entryOf(m_currentTheme).name;
}

QStringList ThemeManager::themes() const {
    QStringList names;
    for (const AppThemeEntry& entry : appThemes)
        names.append(entry.name);
    return names;
}

QString ThemeManager::scheme() const {
    const std::optional<AppTheme> chosen = colorScheme();
    return chosen ? QString(entryOf(*chosen).name) : m_desktopScheme;
}

void ThemeManager::setChatFontSize(int size) {
    size = std::clamp(size, minimumFontSize, maximumFontSize);
    if (size == m_chatFontSize)
        return;
    m_chatFontSize = size;
    m_defaults.setInteger(fontSizeKey, size);
    emit changed();
}

}
