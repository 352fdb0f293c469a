#pragma once

#include <QFile>

#include <malloc.h>

namespace Korvi {

// Megabytes of this process, its share of what it has in common with others: PSS.
inline double ownMegabytes() {
    malloc_trim(0);
    QFile file(QStringLiteral("/proc/self/smaps_rollup"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : file.readAll().split('\n')) {
        if (line.startsWith("Pss:"))
            return line.mid(4).trimmed().split(' ').first().toDouble() / 1024;
    }
    return 0;
}

}
