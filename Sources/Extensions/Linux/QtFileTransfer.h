#pragma once

#include "FileTransfer.h"

#include <QNetworkAccessManager>

#include <chrono>

namespace Korvi {

// File transfers on Qt Network. TLS is checked; redirects are followed only to places that are no less safe.
class QtFileTransfer : public FileTransfer {
public:
    static constexpr std::chrono::milliseconds idleTimeout = std::chrono::seconds(60);

    QtFileTransfer();

    Async<void> download(QUrl url, QString path, TransferProgress progress) override;

private:
    QNetworkAccessManager m_manager;
};

}
