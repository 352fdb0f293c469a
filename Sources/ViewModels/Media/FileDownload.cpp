#include "FileDownload.h"

#include "Desktop.h"
#include "FileTransfer.h"
#include "Media/FileNames.h"
#include "SupportedFileTypes.h"

#include <QDir>
#include <QFileInfo>

namespace Korvi {

using namespace Qt::Literals;

FileDownload::FileDownload(FileTransfer& transfer, Desktop& desktop, Places places, QUrl url, QString name)
    : m_transfer(transfer)
    , m_desktop(desktop)
    , m_places(std::move(places))
    , m_url(std::move(url))
    , m_name(std::move(name)) {}

void FileDownload::open() {
    if (mayStartSomething(m_name)) {
        showInFolder();
        return;
    }
    if (const QString path = here(); !path.isEmpty())
        done(path, Then::open);
    else
        start(temporaryPlace(), Then::open);
}

void FileDownload::fetch() {
    if (const QString path = here(); !path.isEmpty())
        done(path, Then::play);
    else
        start(temporaryPlace(), Then::play);
}

QUrl FileDownload::fetched() const {
    const QString path = m_fetchedPath;
    return path.isEmpty() ? QUrl() : QUrl::fromLocalFile(path);
}

QString FileDownload::here() const {
    for (const QString& path : {m_savedPath.value(), m_fetchedPath.value()}) {
        if (!path.isEmpty() && QFileInfo::exists(path))
            return path;
    }
    return {};
}

QString FileDownload::temporaryPlace() const {
    // In a folder of its own, so that the program that opens it shows its own name.
    return freePath(m_places.temporary, u"file"_s) + u'/' + m_name;
}

void FileDownload::save() {
    start(freePath(m_places.folder, m_name), Then::keep);
}

void FileDownload::saveAs(const QUrl& file) {
    if (file.isLocalFile())
        start(file.toLocalFile(), Then::keep);
}

void FileDownload::showInFolder() {
    if (!m_savedPath.value().isEmpty() && QFileInfo::exists(m_savedPath))
        done(m_savedPath, Then::show);
    else
        start(freePath(m_places.folder, m_name), Then::show);
}

void FileDownload::cancel() {
    m_scope.cancel();
    m_isRunning = false;
}

QString FileDownload::savedName() const {
    return QFileInfo(m_savedPath).fileName();
}

void FileDownload::start(QString path, Then then) {
    if (m_isRunning)
        return;
    m_error = QString();
    m_progress = -1;
    m_isRunning = true;
    m_scope.start([this, path, then] { return bring(path, then); });
}

Task<void> FileDownload::bring(QString path, Then then) {
    try {
        const QString folder = QFileInfo(path).absolutePath();
        if (!QDir().mkpath(folder))
            throw URLError(URLError::Code::other, u"Не удалось создать папку %1."_s.arg(folder));
        const QUrl url = m_url;
        const TransferProgress progress = [this](qint64 received, qint64 total) {
            m_progress = total > 0 ? static_cast<double>(received) / static_cast<double>(total) : -1;
            m_size = SupportedFileTypes::byteCount(total > 0 ? total : received);
        };
        co_await m_transfer.download(url, path, progress);
        m_isRunning = false;
        done(path, then);
    } catch (const URLError& error) {
        m_isRunning = false;
        m_error = error.description;
    }
}

void FileDownload::done(const QString& path, Then then) {
    m_size = SupportedFileTypes::byteCount(QFileInfo(path).size());
    if (then == Then::open || then == Then::play)
        m_fetchedPath = path;
    else
        m_savedPath = path;
    if (then == Then::show)
        m_desktop.showInFolder(path);
    else if (then == Then::open && !m_desktop.openFile(path))
        m_error = u"Не нашлось программы, чтобы открыть файл. Его можно сохранить."_s;
}

}
