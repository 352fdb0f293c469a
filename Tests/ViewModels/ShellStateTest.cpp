#include "Defaults.h"
#include "Info.h"
#include "Printing.h"
#include "Shell/AIDataConsent.h"
#include "Shell/AboutViewModel.h"
#include "Shell/CacheManager.h"
#include "Shell/Onboarding.h"
#include "Shell/ThemeManager.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;

class ShellState : public testing::Test {
protected:
    QTemporaryDir folder;
    Defaults defaults{folder.filePath(u"defaults.sqlite"_s)};
};

TEST_F(ShellState, TheStoredThemeIsAppliedAndAnUnknownOneIsNot) {
    struct Row {
        QString stored; // empty: nothing
        QString desktop;
        AppTheme theme;
        QString scheme;
    };
    for (const Row& row : std::initializer_list<Row>{
             {u""_s, u"system"_s, AppTheme::system, u"system"_s},
             {u""_s, u"dark"_s, AppTheme::system, u"dark"_s},
             {u"Авто"_s, u"light"_s, AppTheme::system, u"light"_s},
             {u"Светлая"_s, u"dark"_s, AppTheme::light, u"light"_s},
             {u"Темная"_s, u"light"_s, AppTheme::dark, u"dark"_s},
             {u"Тёмная"_s, u"light"_s, AppTheme::system, u"light"_s}, // not the stored spelling
             {u"dark"_s, u"light"_s, AppTheme::system, u"light"_s},
         }) {
        SCOPED_TRACE(row.stored.toStdString() + " on " + row.desktop.toStdString());
        if (!row.stored.isEmpty())
            defaults.setString(u"appTheme"_s, row.stored);
        ThemeManager theme(defaults);
        theme.setDesktop(row.desktop, false);
        EXPECT_EQ(theme.currentTheme(), row.theme);
        EXPECT_EQ(theme.colorScheme().has_value(), row.theme != AppTheme::system);
        EXPECT_EQ(theme.scheme(), row.scheme);
    }
}

TEST_F(ShellState, AChosenThemeStaysAndTheDesktopsIsFollowedWhereItIsLeftOpen) {
    {
        ThemeManager theme(defaults);
        int changes = 0;
        QObject::connect(&theme, &ThemeManager::changed, [&] { ++changes; });
        theme.chooseTheme(u"dark"_s);
        theme.chooseTheme(u"nonsense"_s);
        EXPECT_EQ(changes, 1);
        theme.setDesktop(u"light"_s, true);
        EXPECT_EQ(theme.scheme(), u"dark"_s);
        EXPECT_TRUE(theme.reducedMotion());
    }
    EXPECT_EQ(defaults.string(u"appTheme"_s), u"Темная"_s);
    ThemeManager theme(defaults);
    EXPECT_EQ(theme.scheme(), u"dark"_s);
    theme.setTheme(AppTheme::system);
    theme.setDesktop(u"light"_s, false);
    EXPECT_EQ(theme.scheme(), u"light"_s);
    theme.setDesktop(u"dark"_s, false);
    EXPECT_EQ(theme.scheme(), u"dark"_s);
    EXPECT_EQ(defaults.string(u"appTheme"_s), u"Авто"_s);

    defaults.setString(u"appTheme"_s, u"Зелёная"_s); // unknown, so the desktop's is in force: choosing that is a choice
    ThemeManager(defaults).setTheme(AppTheme::system);
    EXPECT_EQ(defaults.string(u"appTheme"_s), u"Авто"_s);
}

TEST_F(ShellState, TheTextSizeStaysInItsRange) {
    EXPECT_EQ(ThemeManager(defaults).chatFontSize(), 13);
    struct Row {
        qint64 stored;
        int size;
    };
    for (const Row& row :
        {Row{11, 11}, Row{20, 20}, Row{10, 11}, Row{21, 20}, Row{1LL << 40, 20}, Row{0, 13}, Row{-5, 13}}) {
        defaults.setInteger(u"chatFontSize"_s, row.stored);
        EXPECT_EQ(ThemeManager(defaults).chatFontSize(), row.size) << row.stored;
    }
    defaults.setString(u"chatFontSize"_s, u"крупно"_s);
    ThemeManager theme(defaults);
    EXPECT_EQ(theme.chatFontSize(), 13);
    theme.setChatFontSize(17);
    EXPECT_EQ(ThemeManager(defaults).chatFontSize(), 17);
}

TEST_F(ShellState, CachesAreAddedUpAndClearedInTheirOrder) {
    QStringList cleared;
    std::map<QString, qint64> bytes{{u"image"_s, 1000}, {u"thumbnail"_s, 24}, {u"data"_s, 512}, {u"media"_s, 2048}};
    const auto cache = [&](CacheManager::Kind kind, const QString& name) {
        return CacheManager::Cache{kind, [&bytes, name] { return bytes.at(name); },
            [&cleared, &bytes, name] {
                cleared.append(name);
                bytes[name] = 0;
            }};
    };
    using Kind = CacheManager::Kind;
    CacheManager caches({cache(Kind::image, u"image"_s), cache(Kind::image, u"thumbnail"_s),
        cache(Kind::data, u"data"_s), cache(Kind::media, u"media"_s)});
    EXPECT_EQ(caches.totalText(), u"0 байт"_s);
    caches.refreshSizes();
    EXPECT_EQ(caches.imageCacheSize(), 1024);
    EXPECT_EQ(caches.dataCacheSize(), 512);
    EXPECT_EQ(caches.mediaCacheSize(), 2048);
    EXPECT_EQ(caches.totalText(), u"3.5 КБ"_s);
    caches.clearAll();
    EXPECT_EQ(cleared, (QStringList{u"image"_s, u"thumbnail"_s, u"data"_s, u"media"_s}));
    EXPECT_EQ(caches.totalSize(), 0);
}

TEST(CacheManager, SizesReadWell) {
    struct Row {
        qint64 bytes;
        QString text;
    };
    for (const Row& row : std::initializer_list<Row>{
             {0, u"0 байт"_s},
             {512, u"0.5 КБ"_s},
             {1024, u"1.0 КБ"_s},
             {1048575, u"1024.0 КБ"_s},
             {1048576, u"1.0 МБ"_s},
             {1073741824, u"1.0 ГБ"_s},
             {5LL << 40, u"5120.0 ГБ"_s},
         })
        EXPECT_EQ(CacheManager::formattedSize(row.bytes), row.text);
}

TEST_F(ShellState, EachGuideShowsOnceToThoseWhoAreSignedIn) {
    using Kind = KorviOnboardingKind;
    bool isSignedIn = false;
    const auto begin = [&] { return Onboarding(defaults, [&] { return isSignedIn; }); };
    {
        Onboarding guides = begin();
        guides.showAppOnboardingIfNeeded();
        guides.replay(u"app"_s);
        EXPECT_EQ(guides.kind(), std::nullopt);
        isSignedIn = true;
        guides.showAgentOnboardingIfNeeded();
        EXPECT_EQ(guides.kind(), std::nullopt) << "another section is seen";
        guides.showAppOnboardingIfNeeded();
        EXPECT_EQ(guides.kindName(), u"app"_s);
        guides.sectionChanged(u"agent"_s);
        EXPECT_EQ(guides.kind(), Kind::app) << "one guide at a time";
        guides.close(); // the user leaves in the middle
    }
    {
        Onboarding guides = begin();
        guides.showAppOnboardingIfNeeded();
        EXPECT_EQ(guides.kind(), Kind::app) << "it was not finished";
        guides.complete();
        guides.showAppOnboardingIfNeeded();
        EXPECT_EQ(guides.kind(), std::nullopt);
        guides.sectionChanged(u"agent"_s);
        EXPECT_EQ(guides.kindName(), u"agent"_s);
        guides.complete();
        guides.sectionChanged(u"chats"_s);
        guides.sectionChanged(u"agent"_s);
        EXPECT_EQ(guides.kind(), std::nullopt);
    }
    Onboarding guides = begin();
    guides.showAppOnboardingIfNeeded();
    EXPECT_EQ(guides.kind(), std::nullopt) << "it is remembered";
    guides.replay(u"agent"_s);
    EXPECT_EQ(guides.kind(), Kind::agent);
    EXPECT_EQ(defaults.boolean(u"hasSeenAgentOnboarding"_s), false);
    guides.replay(u"app"_s); // another one, from the settings
    EXPECT_EQ(guides.kind(), Kind::app);
    EXPECT_EQ(defaults.boolean(u"hasSeenAppOnboarding"_s), false);
    guides.complete();
    EXPECT_EQ(defaults.boolean(u"hasSeenAppOnboarding"_s), true);
}

TEST_F(ShellState, ConsentIsGivenOnceAndForGood) {
    AIDataConsent consent(defaults);
    EXPECT_FALSE(consent.aiDataConsentGiven());
    int changes = 0;
    QObject::connect(&consent, &AIDataConsent::aiDataConsentGivenChanged, [&] { ++changes; });
    EXPECT_FALSE(AIDataConsent(defaults).aiDataConsentGiven()) << "the next start asks again";
    consent.give();
    consent.give();
    EXPECT_EQ(changes, 1);
    EXPECT_TRUE(AIDataConsent(defaults).aiDataConsentGiven());
}

TEST(AboutViewModel, OnlySecureAddressesBecomeLinks) {
    for (const auto& [text, url] : std::initializer_list<std::pair<QString, QString>>{
             {u"https://korvi.example/privacy"_s, u"https://korvi.example/privacy"_s},
             {u""_s, u""_s},
             {u"http://korvi.example/privacy"_s, u""_s},
             {u"file:///etc/passwd"_s, u""_s},
             {u"javascript:alert(1)"_s, u""_s},
             {u"https:///path"_s, u""_s},
             {u"korvi.example"_s, u""_s},
         }) {
        const AboutViewModel about(Info(QJsonObject{{"KorviPrivacyPolicyURL", text}, {"KorviTermsOfUseURL", text}}));
        EXPECT_EQ(about.property("privacyPolicyUrl").toUrl().toString(), url);
        EXPECT_EQ(about.property("termsOfUseUrl").toUrl().toString(), url);
    }
}

}
}
