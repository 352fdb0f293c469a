#pragma once

#include <QJsonObject>
#include <QWebEnginePage>

#include <deque>
#include <functional>

namespace Korvi {

// A page that nobody sees. It stays loaded and does one thing after the other: its script has `korvi.begin()`, run
// once, and `korvi.run(request)`, whose promised text is the answer. Opens nothing, asks nothing, goes nowhere.
class RenderPage : public QWebEnginePage {
    Q_OBJECT

public:
    // What a request was answered with; empty when the page could not answer it.
    using Answer = std::function<void(const QByteArray&)>;

    // `script` defines `korvi` in the page.
    RenderPage(QWebEngineProfile* profile, const QUrl& page, const QString& script, QObject* parent = nullptr);

    void run(const QJsonObject& request, Answer answer);

    // Goes on as that page, in the same renderer process. What was asked before is answered with nothing.
    void open(const QUrl& page);

    bool isBroken() const { return m_state == State::failed; }

protected:
    bool acceptNavigationRequest(const QUrl& url, NavigationType type, bool isMainFrame) override;
    QWebEnginePage* createWindow(WebWindowType type) override;
    QStringList chooseFiles(FileSelectionMode, const QStringList&, const QStringList&) override { return {}; }
    void javaScriptAlert(const QUrl&, const QString&) override {}
    bool javaScriptConfirm(const QUrl&, const QString&) override { return false; }
    bool javaScriptPrompt(const QUrl&, const QString&, const QString&, QString*) override { return false; }
    void javaScriptConsoleMessage(
        JavaScriptConsoleMessageLevel level, const QString& message, int line, const QString& source) override;

private:
    enum class State { loading, beginning, ready, failed };

    struct Job {
        QJsonObject request;
        Answer answer;
    };

    void loaded(bool isComplete);
    void settled(bool isComplete);
    void next();
    void fail();
    void start(const QString& expression);

    QUrl m_page;
    QString m_script;
    State m_state = State::loading;
    bool m_isBusy = false;
    std::deque<Job> m_jobs; // the first is under way while busy
};

}
