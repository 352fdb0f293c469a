#include "Backend/MultipartBody.h"

#include <algorithm>

namespace Korvi {

namespace {

// A name must not end its own quotes or line.
QByteArray quoted(QString text) {
    text.replace(u'"', QLatin1String("%22"));
    text.replace(u'\r', QLatin1String("%0D"));
    text.replace(u'\n', QLatin1String("%0A"));
    return text.toUtf8();
}

}

MultipartBody::MultipartBody(
    std::unique_ptr<QIODevice> content, const QString& filename, const QString& mimeType, const QByteArray& boundary)
    : m_content(std::move(content))
    , m_head("--" + boundary + "\r\nContent-Disposition: form-data; name=\"file\"; filename=\"" + quoted(filename) +
          "\"\r\nContent-Type: " + quoted(mimeType) + "\r\n\r\n")
    , m_tail("\r\n--" + boundary + "--\r\n") {
    // Without a buffer of its own: the position that is read from is the position.
    QIODevice::open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

qint64 MultipartBody::size() const {
    return m_head.size() + m_content->size() + m_tail.size();
}

// As much as there is room for: whoever reads takes less for the end.
qint64 MultipartBody::readData(char* data, qint64 maxSize) {
    const qint64 start = pos();
    qint64 done = 0;
    while (done < maxSize) {
        const qint64 count = readPart(data + done, maxSize - done, start + done);
        if (count < 0)
            return -1;
        if (count == 0)
            break;
        done += count;
    }
    return done;
}

// From one of the three; 0 at the end of the last, -1 when the file has become shorter.
qint64 MultipartBody::readPart(char* data, qint64 maxSize, qint64 at) {
    const qint64 contentEnd = m_head.size() + m_content->size();
    const auto copy = [&](const QByteArray& bytes, qint64 from) {
        const qint64 count = std::min<qint64>(maxSize, bytes.size() - from);
        std::copy_n(bytes.constData() + from, count, data);
        return count;
    };
    if (at < m_head.size())
        return copy(m_head, at);
    if (at >= contentEnd)
        return copy(m_tail, at - contentEnd);
    if (m_content->pos() != at - m_head.size() && !m_content->seek(at - m_head.size()))
        return -1;
    const qint64 count = m_content->read(data, std::min(maxSize, contentEnd - at));
    return count > 0 ? count : -1;
}

}
