#include "ArtifactExport.h"

#include "Backend/APIError.h"
#include "Chat/ArtifactSelection.h"
#include "Chat/ChatService.h"
#include "Desktop.h"
#include "Media/FileNames.h"
#include "PdfPrinter.h"
#include "URLError.h"

#include <QDir>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QSaveFile>
#include <QStandardPaths>

namespace Korvi {

using namespace Qt::Literals;

namespace {

Q_LOGGING_CATEGORY(lcExport, "korvi.artifact.export")

QString pdfName(QString title) {
    if (title.isEmpty())
        title = u"Artifact"_s;
    title.replace(u'/', u'_').replace(u':', u'_');
    return safeFileName(title + u".pdf"_s, u"Artifact.pdf"_s);
}

}

ArtifactExport::ArtifactExport(Dependencies dependencies, QObject* parent)
    : QObject(parent)
    , m_dependencies(dependencies) {}

ArtifactExport::~ArtifactExport() = default;

void ArtifactExport::downloadPDF(const ArtifactSelection* selection, qint64 chatId) {
    if (selection)
        downloadPDF(selection->artifact(), chatId);
}

void ArtifactExport::downloadPDF(const Artifact& artifact, qint64 chatId) {
    if (m_isDownloadingPDF)
        return;
    dismiss();
    m_isDownloadingPDF = true;
    m_scope.start([this, artifact, chatId] { return make(artifact, chatId); });
}

Task<void> ArtifactExport::make(Artifact artifact, qint64 chatId) {
    QString trouble;
    try {
        QByteArray bytes;
        const QString kind = artifact.kind.toLower();
        if (kind != "latex"_L1) {
            const QString title = artifact.title;
            const QString text = artifact.text.toString();
            bytes = co_await m_dependencies.printer.print(kind, title, text);
        } else if (chatId < 0) {
            qCWarning(lcExport) << "❌ [ArtifactPDF] No active chat ID for LaTeX PDF";
            trouble = u"PDF можно получить, когда чат сохранён."_s;
        } else {
            const QString id = artifact.id;
            const qint64 version = artifact.version.value_or(1);
            bytes = co_await m_dependencies.chatService.downloadArtifactPDF(chatId, id, version);
        }
        if (trouble.isEmpty()) {
            const QString path = bytes.isEmpty() ? QString() : write(artifact.title, bytes);
            if (path.isEmpty())
                throw PrintError(u"Не удалось записать PDF."_s);
            m_pdfURL = path;
            m_showShareSheet = true;
        }
    } catch (const PrintError& error) {
        trouble = error.description;
    } catch (const URLError& error) {
        trouble = error.description;
    } catch (const APIError& error) {
        trouble = error.errorDescription();
    }
    m_isDownloadingPDF = false;
    if (!trouble.isEmpty()) {
        qCWarning(lcExport) << "❌ [ArtifactPDF] Failed:" << artifact.kind;
        m_error = trouble;
    }
}

QString ArtifactExport::write(const QString& title, const QByteArray& bytes) {
    m_folder = std::make_unique<QTemporaryDir>();
    if (!m_folder->isValid())
        return {};
    QSaveFile file(m_folder->filePath(pdfName(title)));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        return {};
    return file.fileName();
}

void ArtifactExport::openPDF() {
    if (!m_dependencies.desktop.openFile(m_pdfURL))
        m_error = u"Не нашлось программы, чтобы открыть PDF. Его можно сохранить."_s;
}

void ArtifactExport::showPDFInFolder() {
    m_dependencies.desktop.showInFolder(m_pdfURL);
}

QUrl ArtifactExport::suggested(const QString& name) const {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
    return QUrl::fromLocalFile(freePath(folder, safeFileName(name, u"Artifact"_s)));
}

void ArtifactExport::savePDF(const QUrl& file) {
    QFile pdf(m_pdfURL);
    if (pdf.open(QIODevice::ReadOnly))
        save(file, pdf.readAll());
    else
        m_error = u"Файла больше нет: сделайте PDF заново."_s;
}

void ArtifactExport::saveText(const QUrl& file, const QString& text) {
    save(file, text.toUtf8());
}

void ArtifactExport::save(const QUrl& file, const QByteArray& bytes) {
    // The folder that was proposed may not be there yet.
    QDir().mkpath(QFileInfo(file.toLocalFile()).absolutePath());
    QSaveFile output(file.toLocalFile());
    if (!output.open(QIODevice::WriteOnly) || output.write(bytes) != bytes.size() || !output.commit())
        m_error = u"Не удалось сохранить файл: %1"_s.arg(output.errorString());
}

void ArtifactExport::dismiss() {
    m_scope.cancel();
    m_isDownloadingPDF = false;
    m_showShareSheet = false;
    m_pdfURL = QString();
    m_error = QString();
}

}
