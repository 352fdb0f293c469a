#include "SignIn/CallbackParameters.h"

#include <QRegularExpression>
#include <QStringDecoder>
#include <QStringList>

namespace Korvi {

namespace {

QString withoutPercentEncoding(const QString& text) {
    static const QRegularExpression broken(QStringLiteral("%(?![0-9A-Fa-f]{2})"));
    if (text.contains(broken))
        return text;
    QStringDecoder decoder(QStringDecoder::Utf8, QStringConverter::Flag::ConvertInitialBom);
    const QString decoded = decoder(QByteArray::fromPercentEncoding(text.toUtf8()));
    return decoder.hasError() ? text : decoded;
}

}

QMap<QString, QString> parseURLFragment(const QString& fragment) {
    QMap<QString, QString> result;
    for (const QString& part : fragment.split(u'&')) {
        const QStringList pieces = part.split(u'=');
        if (pieces.size() == 2)
            result.insert(withoutPercentEncoding(pieces[0]), withoutPercentEncoding(pieces[1]));
    }
    return result;
}

QMap<QString, QString> callbackParameters(const QUrl& redirect) {
    QMap<QString, QString> result;
    // A value in the query may hold a "=", an authorization code for one.
    for (const QString& part : redirect.query(QUrl::FullyEncoded).split(u'&', Qt::SkipEmptyParts)) {
        const auto equals = part.indexOf(u'=');
        if (equals > 0)
            result.insert(withoutPercentEncoding(part.left(equals)), withoutPercentEncoding(part.mid(equals + 1)));
    }
    result.insert(parseURLFragment(redirect.fragment(QUrl::FullyEncoded)));
    return result;
}

}
