#pragma once

#include <QByteArrayList>

#include <utility>

namespace Korvi {

// The whole lines that a stream's next piece completes, without their ends. `open` is what has come of the one behind
// them, from call to call.
inline QByteArrayList takeLines(QByteArray& open, QByteArrayView piece) {
    QByteArrayList lines;
    qsizetype begin = 0;
    for (qsizetype end = piece.indexOf('\n'); end >= 0; end = piece.indexOf('\n', begin)) {
        open.append(piece.sliced(begin, end - begin));
        lines.append(std::exchange(open, {}));
        begin = end + 1;
    }
    open.append(piece.sliced(begin));
    return lines;
}

}
