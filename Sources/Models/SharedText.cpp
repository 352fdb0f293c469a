#include "SharedText.h"

#include <algorithm>
#include <atomic>

namespace Korvi {

namespace {

constexpr qsizetype closed = -1;
constexpr qsizetype smallest = 256;

const bool isReadAsString = QMetaType::registerConverter(&SharedText::toString);

quint64 newOrigin() {
    static std::atomic<quint64> last = 0;
    return ++last;
}

}

// Units that are in use never change; behind them the one text that ends there may write. A text goes on in a buffer of
// the same origin only if no other text continues it: of two of one origin, one is the beginning of the other.
struct SharedText::Buffer {
    Buffer(const QString& text, quint64 madeFrom)
        : storage(text)
        , begin(storage.constData())
        , used(text.size())
        , origin(madeFrom) {}
    Buffer(QStringView text, qsizetype capacity, quint64 madeFrom)
        : storage(capacity, Qt::Uninitialized)
        , writable(storage.data())
        , begin(writable)
        , used(text.size())
        , origin(madeFrom) {
        std::copy(text.begin(), text.end(), writable);
    }

    // Whether the text that ends at `size` may be the one that goes on to `next`.
    bool claim(qsizetype size, qsizetype next) { return used.compare_exchange_strong(size, next); }

    QString storage;
    QChar* writable = nullptr; // not in a text that came from outside
    const QChar* begin;
    std::atomic<qsizetype> used;
    quint64 origin;
};

SharedText::SharedText(const QString& text)
    : m_buffer(text.isEmpty() ? nullptr : std::make_shared<Buffer>(text, newOrigin()))
    , m_size(text.size()) {}

SharedText SharedText::becoming(const QVariant& value) const {
    if (value.metaType() == QMetaType::fromType<SharedText>())
        return value.value<SharedText>();
    const QString text = value.toString();
    if (isEmpty() || !text.startsWith(view()))
        return text;
    SharedText grown = *this;
    grown.append(QStringView(text).sliced(m_size));
    return grown;
}

QStringView SharedText::view() const {
    return m_buffer ? QStringView(m_buffer->begin, m_size) : QStringView();
}

QString SharedText::toString() const {
    return m_buffer && m_buffer->storage.size() == m_size ? m_buffer->storage : view().toString();
}

void SharedText::append(QStringView piece) {
    if (piece.isEmpty())
        return;
    const qsizetype size = m_size + piece.size();
    const bool hasRoom = m_buffer && m_buffer->writable && size <= m_buffer->storage.size();
    if (hasRoom && m_buffer->claim(m_size, size)) {
        std::copy(piece.begin(), piece.end(), m_buffer->writable + m_size);
    } else {
        const bool isOnly = m_buffer && m_buffer->claim(m_size, closed);
        auto larger =
            std::make_shared<Buffer>(view(), std::max(smallest, 2 * size), isOnly ? m_buffer->origin : newOrigin());
        std::copy(piece.begin(), piece.end(), larger->writable + m_size);
        larger->used = size;
        m_buffer = std::move(larger);
    }
    m_size = size;
}

bool SharedText::continues(const SharedText& earlier) const {
    if (earlier.isEmpty() || m_size < earlier.m_size)
        return earlier.isEmpty();
    return m_buffer->origin == earlier.m_buffer->origin || view().startsWith(earlier.view());
}

bool operator==(const SharedText& a, const SharedText& b) {
    return a.m_size == b.m_size && a.continues(b);
}

}
