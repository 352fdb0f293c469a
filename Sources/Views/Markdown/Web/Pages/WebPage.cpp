#include "WebPage.h"

#include <QCryptographicHash>

namespace Korvi::WebPage {

using namespace Qt::Literals;

QString escapedForScript(QString text) {
    text.replace(u'\\', u"\\\\"_s).replace(u'\'', u"\\'"_s).replace(u'\n', u"\\n"_s);
    text.replace(u'\r', u"\\r"_s).replace(QChar(u'\0'), u"\\0"_s);
    text.replace(QChar(0x2028), u"\\u2028"_s).replace(QChar(0x2029), u"\\u2029"_s);
    // A page's parser looks for these inside strings too.
    return text.replace(u"</"_s, u"<\\/"_s)
        .replace(u"<!--"_s, u"<\\!--"_s)
        .replace(u"<script"_s, u"<\\script"_s, Qt::CaseInsensitive);
}

QString assemble(const QString& libraries, const QString& style, const QString& body, const QString& script) {
    const auto hash =
        QString::fromLatin1(QCryptographicHash::hash(script.toUtf8(), QCryptographicHash::Sha256).toBase64());
    const QString policy = u"default-src 'none'; base-uri 'none'; form-action 'none'; img-src data:; "
                           "font-src %1:; style-src %1: 'unsafe-inline'; script-src %1: 'sha256-%2'"_s.arg(
                               QLatin1StringView(scheme), hash);
    QString page;
    page += u"<!doctype html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n"_s;
    page += u"<meta http-equiv=\"Content-Security-Policy\" content=\""_s + policy + u"\">\n"_s;
    page += u"<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"_s;
    page += libraries + u"<style>\n"_s + style + u"</style>\n</head>\n<body>\n"_s + body;
    page += u"<script>"_s + script + u"</script>\n</body>\n</html>\n"_s;
    return page;
}

}
