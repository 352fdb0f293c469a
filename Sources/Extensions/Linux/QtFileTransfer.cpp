#include "QtFileTransfer.h"

#include "Loopback.h"
#include "QtHttpTransport.h"

#include <QNetworkReply>
#include <QPointer>
#include <QSaveFile>

#include <memory>

namespace Korvi {

using namespace Qt::Literals;

namespace {

constexpr qint64 bufferSize = 256LL * 1024; // what may wait in memory for the disk

QString refusal(int status) {
    switch (status) {
    case 401:
    case 403: return u"Нет доступа к файлу."_s;
    case 404:
    case 410: return u"Файла больше нет на сервере."_s;
    default: return u"Сервер не отдал файл (код %1)."_s.arg(status);
    }
}

// One download under way; ends with its reply.
struct Download {
    QNetworkReply* reply;
    QSaveFile file;
    Resolver<void> resolver;
    TransferProgress progress;
    qint64 received = 0;

    Download(QNetworkReply* theReply, const QString& path, Resolver<void> theResolver, TransferProgress theProgress)
        : reply(theReply)
        , file(path)
        , resolver(std::move(theResolver))
        , progress(std::move(theProgress)) {}

    int status() const { return reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(); }

    void fail(URLError::Code code, const QString& text) {
        file.cancelWriting();
        resolver.fail(URLError(code, text));
    }

    // False when the disk does not take it.
    bool take() {
        if (status() >= 300 || !reply->isOpen())
            return true;
        const QByteArray piece = reply->readAll();
        if (piece.isEmpty())
            return true;
        if (!file.isOpen() && !file.open(QIODevice::WriteOnly))
            return false;
        received += piece.size();
        if (file.write(piece) != piece.size())
            return false;
        if (progress) {
            const QVariant length = reply->header(QNetworkRequest::ContentLengthHeader);
            progress(received, length.isValid() ? length.toLongLong() : -1);
        }
        return true;
    }

    void diskFailed() {
        fail(URLError::Code::other, u"Не удалось записать файл: %1"_s.arg(file.errorString()));
        reply->abort();
    }

    void finish() {
        if (!take())
            return diskFailed();
        if (status() >= 300)
            return fail(URLError::Code::other, refusal(status()));
        if (reply->error() != QNetworkReply::NoError) {
            const URLError error = urlError(reply->error(), reply->errorString());
            return fail(error.code, error.description);
        }
        const qint64 length = reply->header(QNetworkRequest::ContentLengthHeader).toLongLong();
        if (length > received)
            return fail(URLError::Code::networkConnectionLost, u"Соединение прервано."_s);
        if ((!file.isOpen() && !file.open(QIODevice::WriteOnly)) || !file.commit())
            return fail(URLError::Code::other, u"Не удалось записать файл: %1"_s.arg(file.errorString()));
        resolver.resolve();
    }
};

}

QtFileTransfer::QtFileTransfer() {
    m_manager.setAutoDeleteReplies(false);
    m_manager.setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
}

Async<void> QtFileTransfer::download(QUrl url, QString path, TransferProgress progress) {
    Resolver<void> resolver;
    if (url.scheme() != "https"_L1 && !(url.scheme() == "http"_L1 && isLoopback(url))) {
        resolver.fail(URLError(
            URLError::Code::secureConnectionFailed, u"Адрес файла небезопасен: без шифрования его не получить."_s));
        return resolver.async();
    }
    QNetworkRequest request(url);
    request.setTransferTimeout(static_cast<int>(idleTimeout.count()));
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    QNetworkReply* reply = m_manager.get(request);
    reply->setReadBufferSize(bufferSize);

    const auto download = std::make_shared<Download>(reply, path, resolver, std::move(progress));
    QObject::connect(reply, &QNetworkReply::readyRead, reply, [download] {
        if (!download->take())
            download->diskFailed();
    });
    QObject::connect(reply, &QNetworkReply::finished, reply, [download] {
        download->reply->deleteLater();
        download->finish();
    });
    resolver.onCancel([reply = QPointer(reply)] {
        if (reply)
            reply->abort();
    });
    return resolver.async();
}

}
