#include "Browser.h"

#include <QDesktopServices>
#include <QNetworkReply>

#include <algorithm>

namespace Korvi::Test {

using namespace Qt::Literals;

Browser::Browser() {
    QDesktopServices::setUrlHandler(u"http"_s, this, "open");
}

Browser::~Browser() {
    QDesktopServices::unsetUrlHandler(u"http"_s);
    for (const auto& handler : m_handlers) {
        handler->kill();
        handler->waitForFinished();
    }
}

void Browser::open(const QUrl& url) {
    opened.append(url);
    load(url);
}

void Browser::load(const QUrl& url, const QByteArray& form) {
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setHeader(QNetworkRequest::ContentTypeHeader, "application/x-www-form-urlencoded");
    QNetworkReply* reply = form.isEmpty() ? m_network.get(request) : m_network.post(request, form);
    connect(reply, &QNetworkReply::finished, this, [this, reply, url] {
        reply->deleteLater();
        page = reply->readAll();
        if (const QByteArray location = reply->rawHeader("Location"); !location.isEmpty()) {
            QUrl next = QUrl::fromEncoded(location);
            if (!next.hasFragment())
                next.setFragment(url.fragment(QUrl::FullyEncoded), QUrl::StrictMode);
            return next.scheme() == "http"_L1 ? load(next) : startHandler(next);
        }
        if (page.startsWith("POST ")) {
            const QByteArrayList lines = page.split('\n');
            load(QUrl::fromEncoded(lines.first().mid(5)), lines.value(1));
        }
    });
}

void Browser::startHandler(const QUrl& url) {
    passed.append(url);
    auto handler = std::make_unique<QProcess>();
    handler->setProcessChannelMode(QProcess::ForwardedChannels);
    handler->start(QString::fromLatin1(KORVI_PROGRAM), {QString::fromLatin1(url.toEncoded())});
    m_handlers.push_back(std::move(handler));
}

bool Browser::handlersAreDone() const {
    return std::all_of(m_handlers.begin(), m_handlers.end(), [](const auto& handler) {
        return handler->state() == QProcess::NotRunning && handler->exitStatus() == QProcess::NormalExit &&
            handler->exitCode() == 0;
    });
}

}
