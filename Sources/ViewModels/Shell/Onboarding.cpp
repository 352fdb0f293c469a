#include "Shell/Onboarding.h"

#include "Defaults.h"

#include <algorithm>

namespace Korvi {

using namespace Qt::Literals;

namespace {

struct Entry {
    KorviOnboardingKind kind;
    QLatin1StringView name;
    QLatin1StringView key;
};

constexpr Entry guides[] = {
    {KorviOnboardingKind::app, "app"_L1, "hasSeenAppOnboarding"_L1},
    {KorviOnboardingKind::agent, "agent"_L1, "hasSeenAgentOnboarding"_L1},
};

const Entry& entryOf(KorviOnboardingKind kind) {
    return *std::ranges::find(guides, kind, &Entry::kind);
}

}

Onboarding::Onboarding(Defaults& defaults, std::function<bool()> isSignedIn, QObject* parent)
    : QObject(parent)
    , m_defaults(defaults)
    , m_isSignedIn(std::move(isSignedIn)) {}

void Onboarding::showAppOnboardingIfNeeded() {
    if (m_isSignedIn() && !hasSeen(KorviOnboardingKind::app) && !m_kind)
        show(KorviOnboardingKind::app);
}

void Onboarding::showAgentOnboardingIfNeeded() {
    if (m_isSignedIn() && m_section == "agent"_L1 && !hasSeen(KorviOnboardingKind::agent) && !m_kind)
        show(KorviOnboardingKind::agent);
}

void Onboarding::sectionChanged(const QString& section) {
    m_section = section;
    showAgentOnboardingIfNeeded();
}

void Onboarding::replay(const QString& kind) {
    const auto* entry = std::ranges::find(guides, kind, &Entry::name);
    if (entry == std::end(guides))
        return;
    m_defaults.setBoolean(entry->key, false);
    if (m_isSignedIn())
        show(entry->kind);
}

void Onboarding::complete() {
    if (!m_kind)
        return;
    m_defaults.setBoolean(entryOf(*m_kind).key, true);
    show(std::nullopt);
}

void Onboarding::close() {
    show(std::nullopt);
}

QString Onboarding::kindName() const {
    return m_kind ? QString(entryOf(*m_kind).name) : QString();
}

bool Onboarding::hasSeen(KorviOnboardingKind kind) const {
    return m_defaults.boolean(entryOf(kind).key).value_or(false);
}

void Onboarding::show(std::optional<KorviOnboardingKind> kind) {
    if (m_kind == kind)
        return;
    m_kind = kind;
    emit kindChanged();
}

}
