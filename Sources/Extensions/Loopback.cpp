#include "Loopback.h"

#include <QHostAddress>

namespace Korvi {

bool isLoopback(const QUrl& url) {
    const QString host = url.host();
    return host.compare(QLatin1String("localhost"), Qt::CaseInsensitive) == 0 || QHostAddress(host).isLoopback();
}

}
