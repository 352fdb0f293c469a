#pragma once

#include <QFile>
#include <QImage>
#include <QString>

namespace Korvi {

// The file through which the client gets what is to be seen: one frame of 32-bit pixels, the first line first.
class SharedFrame {
public:
    // The client has made the file, large enough.
    void open(const QString& path, const QSize& size);
    bool write(const QImage& frame);

private:
    QFile m_file;
    uchar* m_memory = nullptr;
    QSize m_size;
};

}
