#include "SignIn/Nonce.h"

#include "Clock.h"

#include <QCryptographicHash>

namespace Korvi {

QString makeNonce(Random& random) {
    constexpr int length = 32;
    const QByteArray alphabet = QByteArray::fromRawData(nonceAlphabet, qsizetype(qstrlen(nonceAlphabet)));
    QString nonce;
    for (int i = 0; i < length; ++i)
        nonce += QLatin1Char(alphabet.at(random.integer(0, alphabet.size() - 1)));
    return nonce;
}

QString sha256Hex(const QString& text) {
    return QString::fromLatin1(QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Sha256).toHex());
}

}
