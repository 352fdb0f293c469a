#include "Chat/AttachmentIntake.h"

#include "Clock.h"
#include "Media/FileNames.h"
#include "SupportedFileTypes.h"
#include "Workers.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QMimeDatabase>

namespace Korvi {

using namespace Qt::Literals;

Q_LOGGING_CATEGORY(lcIntake, "korvi.chat.attachments", QtInfoMsg)

namespace {

using Taken = AttachmentIntake::Taken;

constexpr auto ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner;

bool makePrivateFolder(const QString& folder) {
    return QDir().mkpath(folder) && QFile::setPermissions(folder, ownerOnly | QFileDevice::ExeOwner);
}

bool write(const QString& path, const QByteArray& data) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::NewOnly) && file.setPermissions(ownerOnly) &&
        file.write(data) == data.size() && file.flush();
}

// By its name; that of a README or a Makefile says nothing, but its beginning does.
QString mimeType(const QFileInfo& file) {
    if (!file.suffix().isEmpty())
        return SupportedFileTypes::preferredMIMEType(file.suffix());
    const QMimeType type = QMimeDatabase().mimeTypeForFile(file, QMimeDatabase::MatchContent);
    return type.inherits(u"text/plain"_s) ? u"text/plain"_s : type.name();
}

}

AttachmentIntake::AttachmentIntake(QString folder, Workers& workers, Random& random)
    : m_folder(std::move(folder))
    , m_workers(workers)
    , m_random(random) {
    const QDir left(m_folder);
    for (const QString& name : left.entryList(QDir::Files))
        QFile::remove(left.filePath(name));
}

QString AttachmentIntake::newPath(const QString& prefix, const QString& suffix) {
    return m_folder + u'/' + prefix + m_random.uuid().toString(QUuid::WithoutBraces) + suffix;
}

Task<std::optional<Taken>> AttachmentIntake::takeFile(QUrl file) {
    const QString path = file.toLocalFile();
    if (path.isEmpty())
        co_return std::nullopt;
    const QString copy =
        newPath({}, u'-' + safeFileName(QFileInfo(path).fileName(), u"file"_s)); // there is room for both
    const auto copyFile = [path, copy, folder = m_folder]() -> std::optional<Taken> {
        const QFileInfo info(path);
        if (!info.isFile() || !info.isReadable()) // a pipe or a device would keep the worker waiting
            return std::nullopt;
        Taken found{.filename = info.fileName(),
            .size = info.size(),
            .mimeType = mimeType(info),
            .localURL = QUrl::fromLocalFile(path)};
        if (found.size > SupportedFileTypes::maxMediaSize)
            return found;
        if (makePrivateFolder(folder) && QFile::copy(path, copy) && QFile::setPermissions(copy, ownerOnly))
            found.localURL = QUrl::fromLocalFile(copy);
        else
            qCWarning(lcIntake) << "[Drop] A file could not be copied, using original URL";
        return found;
    };
    std::optional<Taken> taken = co_await m_workers.compute(copyFile);
    co_return std::move(taken);
}

Task<std::optional<Taken>> AttachmentIntake::takeImageData(QByteArray data, QString type) {
    QString suffix = QMimeDatabase().mimeTypeForName(type).preferredSuffix();
    if (suffix.isEmpty())
        suffix = type == "image/jpeg"_L1 ? u"jpg"_s : u"png"_s;
    const QString path = newPath({}, u'.' + suffix);
    const auto writeFile = [path, data, folder = m_folder] { return makePrivateFolder(folder) && write(path, data); };
    const bool isWritten = co_await m_workers.compute(writeFile);
    if (!isWritten)
        co_return std::nullopt;
    std::optional<Taken> taken = Taken{.filename = u"image."_s + suffix,
        .size = data.size(),
        .mimeType = SupportedFileTypes::preferredMIMEType(suffix),
        .localURL = QUrl::fromLocalFile(path)};
    co_return std::move(taken);
}

Task<std::optional<QUrl>> AttachmentIntake::takeImage(QImage image) {
    const QString path = newPath(u"paste_"_s, u".png"_s);
    const auto saveImage = [path, image, folder = m_folder] {
        return makePrivateFolder(folder) && image.save(path, "PNG") && QFile::setPermissions(path, ownerOnly);
    };
    const bool isWritten = co_await m_workers.compute(saveImage);
    std::optional<QUrl> url = isWritten ? std::optional(QUrl::fromLocalFile(path)) : std::nullopt;
    co_return std::move(url);
}

bool AttachmentIntake::owns(const QUrl& localURL) const {
    const QString path = localURL.toLocalFile();
    return !path.isEmpty() && QFileInfo(QDir::cleanPath(path)).absolutePath() == QFileInfo(m_folder).absoluteFilePath();
}

void AttachmentIntake::discard(const QUrl& localURL) {
    if (owns(localURL))
        QFile::remove(localURL.toLocalFile());
}

}
