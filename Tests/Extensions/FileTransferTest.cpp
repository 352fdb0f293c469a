#include "Linux/QtFileTransfer.h"
#include "Running.h"
#include "WaitFor.h"

#include <QFile>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>

#include <gmock/gmock.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;

// Answers every request with the same bytes, and closes.
class OneAnswerServer : public QTcpServer {
public:
    explicit OneAnswerServer(QByteArray answer) {
        EXPECT_TRUE(listen(QHostAddress::LocalHost));
        connect(this, &QTcpServer::newConnection, this, [this, answer = std::move(answer)] {
            QTcpSocket* socket = nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, this, [this, socket, answer] {
                request += socket->readAll();
                if (!request.contains("\r\n\r\n") || holds)
                    return;
                socket->write(answer);
                socket->disconnectFromHost();
            });
        });
    }
    QUrl url() const { return QUrl(u"http://127.0.0.1:%1/file"_s.arg(serverPort())); }

    QByteArray request;
    bool holds = false;
};

QByteArray whole(const QByteArray& body, qint64 length) {
    return "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: " + QByteArray::number(length) + "\r\n\r\n" + body;
}

class FileTransferTest : public testing::Test {
protected:
    FileTransferTest() {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write("old") == 3);
    }
    QByteArray content() const {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
    }
    // What a reader is told; empty when all went well.
    QString outcome(const QUrl& url) {
        const Running<bool> done([&]() -> Task<bool> {
            const TransferProgress noted = [this](qint64 received, qint64 total) { progress = {received, total}; };
            co_await transfer.download(url, path, noted);
            co_return true;
        });
        EXPECT_TRUE(waitFor([&] { return done.isDone(); }));
        const auto error = done.error<URLError>();
        return error ? error->description : QString();
    }

    const QTemporaryDir folder;
    const QString path = folder.filePath(u"file.bin"_s);
    QtFileTransfer transfer;
    std::pair<qint64, qint64> progress{0, 0};
};

TEST_F(FileTransferTest, WritesTheFileWhenAllOfItHasCome) {
    const QByteArray body(3'000'000, 'x');
    OneAnswerServer server(whole(body, body.size()));
    EXPECT_EQ(outcome(server.url()), QString());
    EXPECT_EQ(content(), body);
    EXPECT_EQ(progress, std::pair(qint64(body.size()), qint64(body.size())));
    EXPECT_FALSE(server.request.toLower().contains("authorization"));
    EXPECT_FALSE(QFile(path).permissions() & QFileDevice::ExeOwner);
}

TEST_F(FileTransferTest, LeavesWhatWasThereWhenItFails) {
    struct Case {
        const char* what;
        QByteArray answer;
        QString error;
    };
    for (const Case& one : {
             Case{"broken off", whole("half", 4000), u"Соединение прервано."_s},
             Case{"gone", "HTTP/1.1 404 Not Found\r\nContent-Length: 4\r\nConnection: close\r\n\r\ngone",
                 u"Файла больше нет на сервере."_s},
             Case{"refused", "HTTP/1.1 403 Forbidden\r\nContent-Length: 0\r\nConnection: close\r\n\r\n",
                 u"Нет доступа к файлу."_s},
         }) {
        OneAnswerServer server(one.answer);
        EXPECT_EQ(outcome(server.url()), one.error) << one.what;
        EXPECT_EQ(content(), "old") << one.what;
    }
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files).size(), 1); // nothing half is left
}

TEST_F(FileTransferTest, AsksNoHostWithoutEncryptionAndNoOtherScheme) {
    for (const QString& url :
        {u"http://example.org/a"_s, u"file:///etc/passwd"_s, u"ftp://127.0.0.1/a"_s, u"data:,x"_s, u""_s})
        EXPECT_FALSE(outcome(QUrl(url)).isEmpty()) << qPrintable(url);
    EXPECT_EQ(content(), "old");
}

TEST_F(FileTransferTest, StopsWhenItIsCancelled) {
    OneAnswerServer server(whole("x", 1));
    server.holds = true;
    {
        const Running<bool> done([&]() -> Task<bool> {
            const QUrl url = server.url();
            co_await transfer.download(url, path, {});
            co_return true;
        });
        ASSERT_TRUE(waitFor([&] { return server.request.contains("\r\n\r\n"); }));
    }
    settle();
    EXPECT_EQ(content(), "old");
}

}
}
