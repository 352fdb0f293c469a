#include "BundleHandler.h"

#include "WebPage.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QWebEngineUrlRequestJob>
#include <QWebEngineUrlScheme>

#include <algorithm>

namespace Korvi {

using namespace Qt::Literals;

namespace {

struct Kind {
    QLatin1StringView suffix;
    const char* type;
};

constexpr Kind kinds[] = {
    {QLatin1StringView(".css"), "text/css"},
    {QLatin1StringView(".html"), "text/html"},
    {QLatin1StringView(".js"), "text/javascript"},
    {QLatin1StringView(".woff2"), "font/woff2"},
};

}

void BundleHandler::registerScheme() {
    QWebEngineUrlScheme scheme(WebPage::scheme);
    scheme.setSyntax(QWebEngineUrlScheme::Syntax::Host);
    // Fonts are fetched with their origin checked.
    scheme.setFlags(QWebEngineUrlScheme::SecureScheme | QWebEngineUrlScheme::CorsEnabled);
    QWebEngineUrlScheme::registerScheme(scheme);
}

BundleHandler::BundleHandler(const QString& folder, QObject* parent)
    : QWebEngineUrlSchemeHandler(parent)
    , m_folder(QDir(folder).canonicalPath()) {}

QUrl BundleHandler::addPage(const QString& name, const QString& html) {
    m_pages.insert(u'/' + name, html.toUtf8());
    return QUrl(QLatin1StringView(WebPage::origin) + u'/' + name);
}

void BundleHandler::requestStarted(QWebEngineUrlRequestJob* job) {
    const QString path = job->requestUrl().path();
    const auto* kind = std::ranges::find_if(kinds, [&](const Kind& known) { return path.endsWith(known.suffix); });
    if (job->requestMethod() != "GET" || kind == std::end(kinds)) {
        job->fail(QWebEngineUrlRequestJob::RequestDenied);
        return;
    }
    QIODevice* content = nullptr;
    if (const auto page = m_pages.constFind(path); page != m_pages.constEnd()) {
        auto* buffer = new QBuffer(job);
        buffer->setData(*page);
        content = buffer;
    } else if (const QString real = QFileInfo(m_folder + path).canonicalFilePath();
               !m_folder.isEmpty() && path.startsWith("/npm/"_L1) && real.startsWith(m_folder + "/npm/"_L1)) {
        content = new QFile(real, job);
    }
    if (!content || !content->open(QIODevice::ReadOnly)) {
        job->fail(QWebEngineUrlRequestJob::UrlNotFound);
        return;
    }
    job->reply(kind->type, content);
}

}
