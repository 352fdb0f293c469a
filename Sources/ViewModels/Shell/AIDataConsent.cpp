#include "Shell/AIDataConsent.h"

#include "Defaults.h"

namespace Korvi {

namespace {

const auto key = QStringLiteral("aiDataConsentGiven");

}

AIDataConsent::AIDataConsent(Defaults& defaults, QObject* parent)
    : QObject(parent)
    , m_defaults(defaults)
    , m_given(defaults.boolean(key).value_or(false)) {}

void AIDataConsent::give() {
    if (m_given)
        return;
    m_given = true;
    m_defaults.setBoolean(key, true);
    emit aiDataConsentGivenChanged();
}

}
