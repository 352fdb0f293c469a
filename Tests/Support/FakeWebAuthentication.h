#pragma once

#include "WebAuthenticationSession.h"

#include <QUrlQuery>

#include <optional>

namespace Korvi::Test {

// The browser and the provider's page in it: `web.query("state")` is what the page was asked, `web.redirect(...)` how
// it comes back.
class FakeWebAuthentication : public WebAuthenticationSession {
public:
    bool hasBrowser = true;
    bool hasPort = true;
    QList<QUrl> pages; // every one that was shown

    QUrl listen() override { return hasPort ? QUrl(QStringLiteral("http://127.0.0.1:4711/back")) : QUrl(); }
    Async<QUrl> visit(Visit visit) override {
        cancel();
        pages.append(visit.page);
        Resolver<QUrl> resolver;
        resolver.onCancel([this] { m_current.reset(); });
        if (hasBrowser)
            m_current.emplace(Current{std::move(visit), resolver});
        else
            resolver.fail(WebAuthenticationError(WebAuthenticationError::Code::startFailed, "no browser"));
        return resolver.async();
    }

    bool isOpen() const { return m_current.has_value(); }
    // Of the newest page.
    QString query(const QString& key) const { return QUrlQuery(pages.last()).queryItemValue(key, QUrl::FullyDecoded); }
    // False when the application ignores it. "STATE" and "UUID" stand for what the page was asked with.
    bool redirect(QString url) {
        if (!m_current)
            return false;
        url.replace(QStringLiteral("STATE"), query(QStringLiteral("state")));
        url.replace(QStringLiteral("UUID"), query(QStringLiteral("uuid")));
        if (!m_current->visit.isExpected(QUrl(url)))
            return false;
        std::exchange(m_current, std::nullopt)->resolver.resolve(QUrl(url));
        return true;
    }
    // What a newer visit does to this one.
    void cancel() {
        if (auto ended = std::exchange(m_current, std::nullopt))
            ended->resolver.fail(WebAuthenticationError(WebAuthenticationError::Code::cancelled, "cancelled"));
    }

private:
    struct Current {
        Visit visit;
        Resolver<QUrl> resolver;
    };
    std::optional<Current> m_current;
};

}
