#pragma once

#include <QTcpServer>
#include <QUrl>

namespace Korvi::Test {

// The sign-in pages of all providers, on one port of this machine: /google, /vk, /yandex, /apple. Whoever comes is
// signed in as "anna" at once, and sent back in the way of the real page.
class ProviderPages : public QObject {
    Q_OBJECT

public:
    ProviderPages();

    QUrl page(const QString& provider) const;
    // The reader looks at the page and does nothing.
    bool isIdle = false;

private:
    QByteArray answer(const QUrl& asked) const;

    QTcpServer m_server;
};

}
