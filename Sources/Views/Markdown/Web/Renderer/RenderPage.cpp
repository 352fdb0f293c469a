#include "RenderPage.h"

#include <QJsonDocument>
#include <QWebEngineCertificateError>
#include <QWebEngineScript>

namespace Korvi {

using namespace Qt::Literals;

namespace {

// What a promise has come to is told through the console, for a script's result is taken before the promise is kept.
constexpr char16_t kept[] = u"korvi: kept";
constexpr char16_t broken[] = u"korvi: broken";

}

RenderPage::RenderPage(QWebEngineProfile* profile, const QUrl& page, const QString& script, QObject* parent)
    : QWebEnginePage(profile, parent)
    , m_script(script) {
    connect(this, &QWebEnginePage::loadFinished, this, &RenderPage::loaded);
    connect(this, &QWebEnginePage::renderProcessTerminated, this, &RenderPage::fail);
    connect(this, &QWebEnginePage::featurePermissionRequested, this,
        [this](const QUrl& origin, Feature feature) { setFeaturePermission(origin, feature, PermissionDeniedByUser); });
    connect(this, &QWebEnginePage::certificateError, this,
        [](QWebEngineCertificateError error) { error.rejectCertificate(); });
    setVisible(true); // a hidden page's timers run once a second
    open(page);
}

void RenderPage::open(const QUrl& page) {
    fail();
    m_page = page;
    m_state = State::loading;
    load(page);
}

void RenderPage::run(const QJsonObject& request, Answer answer) {
    if (m_state == State::failed) {
        answer({});
        return;
    }
    m_jobs.push_back({request, std::move(answer)});
    next();
}

bool RenderPage::acceptNavigationRequest(const QUrl& url, NavigationType type, bool isMainFrame) {
    return isMainFrame && type == NavigationTypeTyped && url == m_page;
}

QWebEnginePage* RenderPage::createWindow(WebWindowType) {
    return nullptr;
}

void RenderPage::javaScriptConsoleMessage(JavaScriptConsoleMessageLevel, const QString& message, int, const QString&) {
    // Nothing of it goes into a log: libraries quote what they were given.
    if (message == QStringView(kept))
        settled(true);
    else if (message == QStringView(broken))
        settled(false);
}

void RenderPage::loaded(bool isComplete) {
    if (m_state != State::loading)
        return;
    if (!isComplete) {
        fail();
        return;
    }
    m_state = State::beginning;
    runJavaScript(m_script, QWebEngineScript::MainWorld);
    start(u"korvi.begin()"_s);
}

void RenderPage::settled(bool isComplete) {
    if (m_state == State::beginning) {
        if (!isComplete) {
            fail();
            return;
        }
        m_state = State::ready;
        next();
    } else if (m_isBusy) {
        const auto finish = [this](const QVariant& result) {
            if (!m_isBusy)
                return;
            m_isBusy = false;
            const Job job = std::move(m_jobs.front());
            m_jobs.pop_front();
            job.answer(result.toString().toUtf8());
            next();
        };
        if (isComplete)
            runJavaScript(u"korvi.result"_s, QWebEngineScript::MainWorld, finish);
        else
            finish({});
    }
}

void RenderPage::next() {
    if (m_state != State::ready || m_isBusy || m_jobs.empty())
        return;
    m_isBusy = true;
    // JSON is script, but for two separators of lines that older engines take for ends of lines.
    const QString request = QString::fromUtf8(QJsonDocument(m_jobs.front().request).toJson(QJsonDocument::Compact));
    start(u"korvi.run("_s + request + u')');
}

void RenderPage::start(const QString& expression) {
    const QString script = uR"((async () => {
    try { korvi.result = await %1; console.info('%2') } catch (error) { console.info('%3') }
})())"_s.arg(expression, QString::fromUtf16(kept), QString::fromUtf16(broken));
    runJavaScript(script, QWebEngineScript::MainWorld);
}

void RenderPage::fail() {
    m_state = State::failed;
    m_isBusy = false;
    for (auto jobs = std::exchange(m_jobs, {}); const Job& job : jobs)
        job.answer({});
}

}
