// An address that any program may hand over: no crash, and what was read reads the same when it is written out again.
#include "SignIn/CallbackParameters.h"

#include <QStringList>

#include <cstdlib>

using namespace Korvi;

namespace {

QString written(const QMap<QString, QString>& pairs) {
    QStringList parts;
    for (auto it = pairs.cbegin(); it != pairs.cend(); ++it) {
        const QByteArray part = QUrl::toPercentEncoding(it.key()) + '=' + QUrl::toPercentEncoding(it.value());
        parts.append(QString::fromLatin1(part));
    }
    return parts.join(u'&');
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const auto pairs = parseURLFragment(text);
    if (parseURLFragment(written(pairs)) != pairs)
        std::abort();
    callbackParameters(QUrl(text));
    return 0;
}
