#pragma once

#include <QIODevice>

#include <memory>

namespace Korvi {

// A form with one file in it, read piece by piece from where the file is. Open from the start; ends with `content`.
class MultipartBody : public QIODevice {
    Q_OBJECT

public:
    // `content` is open for reading and of known size.
    MultipartBody(std::unique_ptr<QIODevice> content, const QString& filename, const QString& mimeType,
        const QByteArray& boundary);

    bool isSequential() const override { return false; }
    qint64 size() const override;

protected:
    qint64 readData(char* data, qint64 maxSize) override;
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    qint64 readPart(char* data, qint64 maxSize, qint64 at);

    std::unique_ptr<QIODevice> m_content;
    QByteArray m_head;
    QByteArray m_tail;
};

}
