#pragma once

#include <QTimer>
#include <QWebEnginePage>

#include <functional>

namespace Korvi {

// A page that nobody sees: it becomes a PDF. It goes nowhere, opens nothing and asks nothing.
class PrintPage : public QWebEnginePage {
    Q_OBJECT

public:
    using Done = std::function<void(const QByteArray& pdf)>; // empty: it did not work out

    static constexpr int settleTime = 300; // milliseconds, for scripts that draw when all has come
    static constexpr int patience = 15'000;
    static constexpr int lookEvery = 50;

    // `isReady` is an expression that becomes true in the page; empty: a moment after it has come.
    PrintPage(QWebEngineProfile* profile, const QUrl& page, QString isReady, Done done, QObject* parent = nullptr);

protected:
    bool acceptNavigationRequest(const QUrl& url, NavigationType type, bool isMainFrame) override;
    QWebEnginePage* createWindow(WebWindowType) override { return nullptr; }
    QStringList chooseFiles(FileSelectionMode, const QStringList&, const QStringList&) override { return {}; }
    void javaScriptAlert(const QUrl&, const QString&) override {}
    bool javaScriptConfirm(const QUrl&, const QString&) override { return false; }
    bool javaScriptPrompt(const QUrl&, const QString&, const QString&, QString*) override { return false; }
    void javaScriptConsoleMessage(JavaScriptConsoleMessageLevel, const QString&, int, const QString&) override {}

private:
    void loaded(bool isComplete);
    void look();
    void print();
    void finish(const QByteArray& pdf);

    QUrl m_page;
    QString m_isReady;
    Done m_done;
    QTimer m_limit;
    bool m_isPrinting = false;
};

}
