#include "PrintPage.h"

#include <QPageLayout>
#include <QWebEngineCertificateError>
#include <QWebEngineSettings>

namespace Korvi {

using namespace Qt::Literals;

PrintPage::PrintPage(QWebEngineProfile* profile, const QUrl& page, QString isReady, Done done, QObject* parent)
    : QWebEnginePage(profile, parent)
    , m_page(page)
    , m_isReady(std::move(isReady))
    , m_done(std::move(done)) {
    settings()->setAttribute(QWebEngineSettings::LocalStorageEnabled, false);
    settings()->setAttribute(QWebEngineSettings::PluginsEnabled, false);
    settings()->setAttribute(QWebEngineSettings::JavascriptCanOpenWindows, false);
    settings()->setAttribute(QWebEngineSettings::PrintElementBackgrounds, true);
    connect(this, &QWebEnginePage::loadFinished, this, &PrintPage::loaded);
    connect(this, &QWebEnginePage::renderProcessTerminated, this, [this] { finish({}); });
    connect(this, &QWebEnginePage::featurePermissionRequested, this,
        [this](const QUrl& origin, Feature feature) { setFeaturePermission(origin, feature, PermissionDeniedByUser); });
    connect(this, &QWebEnginePage::certificateError, this,
        [](QWebEngineCertificateError error) { error.rejectCertificate(); });
    m_limit.setSingleShot(true);
    connect(&m_limit, &QTimer::timeout, this, &PrintPage::print);
    m_limit.start(patience);
    setVisible(true); // a hidden page's timers run once a second
    load(page);
}

bool PrintPage::acceptNavigationRequest(const QUrl& url, NavigationType type, bool isMainFrame) {
    return isMainFrame && type == NavigationTypeTyped && url == m_page;
}

void PrintPage::loaded(bool isComplete) {
    if (!isComplete)
        finish({});
    else if (m_isReady.isEmpty())
        QTimer::singleShot(settleTime, this, &PrintPage::print);
    else
        look();
}

void PrintPage::look() {
    runJavaScript(m_isReady, [this](const QVariant& isReady) {
        if (isReady.toBool())
            print();
        else if (!m_isPrinting)
            QTimer::singleShot(lookEvery, this, &PrintPage::look);
    });
}

void PrintPage::print() {
    if (m_isPrinting)
        return;
    m_isPrinting = true;
    m_limit.stop();
    const QPageLayout layout(
        QPageSize(QPageSize::A4), QPageLayout::Portrait, QMarginsF(15, 15, 15, 15), QPageLayout::Millimeter);
    printToPdf([this](const QByteArray& pdf) { finish(pdf); }, layout);
}

void PrintPage::finish(const QByteArray& pdf) {
    m_limit.stop();
    if (const Done done = std::exchange(m_done, {}))
        done(pdf);
}

}
