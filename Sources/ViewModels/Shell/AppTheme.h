#pragma once

#include <QLatin1StringView>
#include <QStringView>

#include <optional>

namespace Korvi {

enum class AppTheme { system, light, dark };

struct AppThemeEntry {
    AppTheme theme;
    QLatin1StringView name; // as the screens know it
    QStringView rawValue;   // as it is stored and read by the user
};

inline constexpr AppThemeEntry appThemes[] = {
    {AppTheme::system, QLatin1StringView("system"), u"Авто"},
    {AppTheme::light, QLatin1StringView("light"), u"Светлая"},
    {AppTheme::dark, QLatin1StringView("dark"), u"Темная"},
};

}
