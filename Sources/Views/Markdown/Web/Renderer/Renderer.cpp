#include "Renderer.h"

#include "LaTeXWebView.h"
#include "MermaidWebView.h"
#include "WebPage.h"

#include <QFile>
#include <QWebEngineDownloadRequest>
#include <QWebEngineSettings>

namespace Korvi {

using namespace Qt::Literals;

namespace {

constexpr QWebEngineSettings::WebAttribute refused[] = {
    QWebEngineSettings::JavascriptCanOpenWindows,
    QWebEngineSettings::JavascriptCanAccessClipboard,
    QWebEngineSettings::LocalStorageEnabled,
    QWebEngineSettings::LocalContentCanAccessRemoteUrls,
    QWebEngineSettings::LocalContentCanAccessFileUrls,
    QWebEngineSettings::HyperlinkAuditingEnabled,
    QWebEngineSettings::ErrorPageEnabled,
    QWebEngineSettings::PluginsEnabled,
    QWebEngineSettings::FullScreenSupportEnabled,
    QWebEngineSettings::ScreenCaptureEnabled,
    QWebEngineSettings::WebGLEnabled,
    QWebEngineSettings::Accelerated2dCanvasEnabled,
    QWebEngineSettings::AutoLoadIconsForPage,
    QWebEngineSettings::AllowRunningInsecureContent,
    QWebEngineSettings::AllowGeolocationOnInsecureOrigins,
    QWebEngineSettings::AllowWindowActivationFromJavaScript,
    QWebEngineSettings::DnsPrefetchEnabled,
    QWebEngineSettings::PdfViewerEnabled,
    QWebEngineSettings::NavigateOnDropEnabled,
};

QString script(const QString& name) {
    QFile file(u":/korvi/renderer/"_s + name);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

}

Renderer::Renderer(const QString& bundle, QObject* parent)
    : QObject(parent)
    , m_bundle(bundle) {
    for (const auto attribute : refused)
        m_profile.settings()->setAttribute(attribute, false);
    m_profile.settings()->setAttribute(QWebEngineSettings::WebRTCPublicInterfacesOnly, true);
    m_profile.setUrlRequestInterceptor(&m_gate);
    m_profile.installUrlSchemeHandler(WebPage::scheme, &m_bundle);
    connect(&m_profile, &QWebEngineProfile::downloadRequested, this,
        [](QWebEngineDownloadRequest* download) { download->cancel(); });
}

Renderer::~Renderer() = default;

void Renderer::run(const QJsonObject& request, RenderPage::Answer answer) {
    if (request.contains("formulas"_L1))
        pageOfFormulas().run(request, std::move(answer));
    else
        pageOfDiagrams(request.value("dark"_L1).toBool()).run(request, std::move(answer));
}

RenderPage& Renderer::pageOfFormulas() {
    if (!m_formulas || m_formulas->isBroken()) {
        const QUrl url = m_bundle.addPage(u"formulas.html"_s, LaTeXWebView::generateLaTeXHTML({}, true));
        m_formulas = std::make_unique<RenderPage>(&m_profile, url, script(u"formulas.js"_s));
    }
    return *m_formulas;
}

RenderPage& Renderer::pageOfDiagrams(bool isDark) {
    const auto page = [&] {
        return m_bundle.addPage(
            isDark ? u"dark.html"_s : u"light.html"_s, MermaidWebView::generateMermaidHTML({}, isDark));
    };
    if (!m_diagrams || m_diagrams->isBroken())
        m_diagrams = std::make_unique<RenderPage>(&m_profile, page(), script(u"diagrams.js"_s));
    else if (m_isDark != isDark)
        m_diagrams->open(page());
    m_isDark = isDark;
    return *m_diagrams;
}

}
