#include "SharedFrame.h"

#include <cstring>

namespace Korvi {

void SharedFrame::open(const QString& path, const QSize& size) {
    m_file.close(); // and what was mapped of it
    m_memory = nullptr;
    m_size = size;
    m_file.setFileName(path);
    const qint64 bytes = qint64(size.width()) * size.height() * 4;
    if (!size.isEmpty() && m_file.open(QIODevice::ReadWrite) && m_file.size() >= bytes)
        m_memory = m_file.map(0, bytes);
}

bool SharedFrame::write(const QImage& frame) {
    if (!m_memory || frame.size() != m_size || frame.depth() != 32)
        return false;
    std::memcpy(m_memory, frame.constBits(), static_cast<std::size_t>(frame.sizeInBytes()));
    return true;
}

}
