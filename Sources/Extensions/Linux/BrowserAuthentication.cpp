#include "BrowserAuthentication.h"

#include "Clock.h"
#include "Log.h"
#include "Loopback.h"
#include "LoopbackRedirect.h"

namespace Korvi {

using namespace Qt::Literals;

BrowserAuthentication::BrowserAuthentication(Open open, Random& random)
    : m_open(std::move(open))
    , m_random(random) {}

BrowserAuthentication::~BrowserAuthentication() = default;

QUrl BrowserAuthentication::listen() {
    end("another sign-in has begun");
    closeLoopback();
    m_loopback = new LoopbackRedirect(m_random.uuid().toString(QUuid::WithoutBraces), &m_listeners);
    m_loopback->isExpected = [this](const QUrl& url) { return isExpected(url); };
    QObject::connect(m_loopback, &LoopbackRedirect::arrived, m_loopback, [this](const QUrl& url) { finish(url); });
    return m_loopback->address();
}

Async<QUrl> BrowserAuthentication::visit(Visit visit) {
    end("another sign-in has begun");
    if (m_loopback && visit.redirect != m_loopback->address())
        closeLoopback();
    Resolver<QUrl> resolver;
    resolver.onCancel([this] {
        m_current.reset();
        closeLoopback();
    });
    const QUrl page = visit.page;
    m_current.emplace(Current{std::move(visit), resolver});
    const bool isSafe = page.scheme() == "https"_L1 || (page.scheme() == "http"_L1 && isLoopback(page));
    if (!isSafe || !m_open(page)) {
        m_current.reset();
        closeLoopback();
        resolver.fail(WebAuthenticationError(WebAuthenticationError::Code::startFailed, "the browser did not open"));
    }
    return resolver.async();
}

bool BrowserAuthentication::take(const QUrl& url) {
    const bool isOurs =
        m_current && m_current->visit.redirect.scheme() == url.scheme() && !m_loopback && isExpected(url);
    if (!isOurs) {
        qCInfo(lcPlatform) << "🌐 [BrowserAuthentication] A URL that no sign-in waits for is ignored";
        return false;
    }
    finish(url);
    return true;
}

bool BrowserAuthentication::isExpected(const QUrl& url) const {
    return m_current && (!m_current->visit.isExpected || m_current->visit.isExpected(url));
}

void BrowserAuthentication::finish(const QUrl& url) {
    if (!m_current)
        return;
    Resolver<QUrl> resolver = std::exchange(m_current, std::nullopt)->resolver;
    closeLoopback();
    if (onReturned)
        onReturned();
    resolver.resolve(url);
}

void BrowserAuthentication::end(const char* why) {
    if (auto ended = std::exchange(m_current, std::nullopt))
        ended->resolver.fail(WebAuthenticationError(WebAuthenticationError::Code::cancelled, why));
}

void BrowserAuthentication::closeLoopback() {
    if (LoopbackRedirect* closing = std::exchange(m_loopback, nullptr))
        closing->retire();
}

}
