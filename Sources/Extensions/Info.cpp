#include "Info.h"

#include "Log.h"

#include <QFile>
#include <QJsonDocument>

namespace Korvi {

Info Info::fromFile(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Info();
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    if (!document.isObject())
        qCWarning(lcPlatform).noquote() << "⚠️ [Info] Not usable:" << path << error.errorString();
    return Info(document.object());
}

}
