#include "FileDownloads.h"

#include "Desktop.h"
#include "Media/FileNames.h"

#include <QDir>
#include <QQmlEngine>
#include <QSaveFile>

namespace Korvi {

using namespace Qt::Literals;

FileDownloads::FileDownloads(Dependencies dependencies, FileDownload::Places places, QObject* parent)
    : QObject(parent)
    , m_dependencies(dependencies)
    , m_places(std::move(places)) {
    QDir(m_places.temporary).removeRecursively();
}

FileDownloads::~FileDownloads() = default;

FileDownload* FileDownloads::of(const QString& url, const QString& name) {
    std::shared_ptr<FileDownload>& download = m_downloads[url];
    if (!download) {
        download = std::make_shared<FileDownload>(m_dependencies.transfer, m_dependencies.desktop, m_places,
            QUrl(url, QUrl::StrictMode), safeFileName(name, u"файл"_s));
        QQmlEngine::setObjectOwnership(download.get(), QQmlEngine::CppOwnership);
    }
    return download.get();
}

QString FileDownloads::kind(const QString& name, const QString& mimetype) const {
    return fileKind(name, mimetype);
}

QUrl FileDownloads::suggested(const QString& name) const {
    return QUrl::fromLocalFile(freePath(m_places.folder, safeFileName(name, u"файл"_s)));
}

bool FileDownloads::isOpenable(const QString& name) const {
    return !mayStartSomething(safeFileName(name, QString()));
}

QString FileDownloads::keep(const QString& name, const QByteArray& bytes) const {
    QDir().mkpath(m_places.folder);
    QSaveFile file(freePath(m_places.folder, safeFileName(name, u"файл"_s)));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        return {};
    return file.fileName();
}

void FileDownloads::show(const QString& path) const {
    m_dependencies.desktop.showInFolder(path);
}

}
