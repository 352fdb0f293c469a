#include "PrivateFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Korvi {

bool makePrivateFile(const QString& path) {
    const QString folder = QFileInfo(path).absolutePath();
    if (!QFileInfo::exists(folder)) {
        if (!QDir().mkpath(folder))
            return false;
        ::chmod(QFile::encodeName(folder).constData(), S_IRWXU);
    }
    const int file = ::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (file < 0)
        return false;
    const bool ok = ::fchmod(file, S_IRUSR | S_IWUSR) == 0;
    ::close(file);
    return ok;
}

}
