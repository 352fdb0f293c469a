#pragma once

#include <QNetworkAccessManager>
#include <QProcess>
#include <QUrl>

#include <memory>
#include <vector>

namespace Korvi::Test {

// The browser of the desktop: opens what the client asks the desktop to open, follows redirects, sends forms, and starts
// the client with an address of a scheme that the client is the handler of.
class Browser : public QObject {
    Q_OBJECT

public:
    Browser();
    ~Browser() override;

    // As a link somewhere would: starts the client with it.
    void startHandler(const QUrl& url);
    // Every client that was started has ended, and well.
    bool handlersAreDone() const;

    QList<QUrl> opened; // what the client asked for
    QList<QUrl> passed; // what clients were started with
    QByteArray page;    // the newest that is shown

public slots:
    void open(const QUrl& url);

private:
    void load(const QUrl& url, const QByteArray& form = {});

    QNetworkAccessManager m_network;
    std::vector<std::unique_ptr<QProcess>> m_handlers;
};

}
