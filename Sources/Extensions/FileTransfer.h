#pragma once

#include "Async.h"
#include "URLError.h"

#include <QString>
#include <QUrl>

#include <functional>

namespace Korvi {

// Bytes so far and in all; -1 in all where the far side does not say.
using TransferProgress = std::function<void(qint64 received, qint64 total)>;

// Fetches files of any size, straight to the disk.
class FileTransfer {
public:
    virtual ~FileTransfer() = default;

    // The file stands at `path` when all of it has come, and not before: a transfer that fails or is cancelled leaves
    // what was there. Its folder must exist. Throws URLError with a text for the reader. https, or http towards this
    // machine; nobody's token goes along.
    virtual Async<void> download(QUrl url, QString path, TransferProgress progress) = 0;
};

}
