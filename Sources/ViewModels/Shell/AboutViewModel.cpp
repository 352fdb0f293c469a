#include "Shell/AboutViewModel.h"

#include "Info.h"

namespace Korvi {

using namespace Qt::Literals;

namespace {

QUrl secureUrl(const QString& text) {
    const QUrl url(text, QUrl::StrictMode);
    return url.isValid() && url.scheme() == "https"_L1 && !url.host().isEmpty() ? url : QUrl();
}

}

AboutViewModel::AboutViewModel(const Info& info, QObject* parent)
    : QObject(parent)
    , m_version(info.string("CFBundleShortVersionString"_L1))
    , m_privacyPolicyUrl(secureUrl(info.string("KorviPrivacyPolicyURL"_L1)))
    , m_termsOfUseUrl(secureUrl(info.string("KorviTermsOfUseURL"_L1))) {}

}
