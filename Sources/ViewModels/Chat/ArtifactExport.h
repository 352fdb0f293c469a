#pragma once

#include "Chat/ArtifactSelection.h"
#include "TaskScope.h"

#include <QObject>
#include <QProperty>
#include <QTemporaryDir>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

#include <memory>

namespace Korvi {

class ChatService;
class Desktop;
class PdfPrinter;

// The document that is looked at, as a file: its text, or a PDF. LaTeX is set by the service, all else on this machine.
class ArtifactExport : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("owned by the application")
    Q_PROPERTY(bool isDownloadingPDF READ isDownloadingPDF NOTIFY isDownloadingPDFChanged)
    Q_PROPERTY(QString pdfURL READ pdfURL NOTIFY pdfURLChanged) // path of the file; empty without one
    Q_PROPERTY(bool showShareSheet READ showShareSheet NOTIFY showShareSheetChanged)
    Q_PROPERTY(QString error READ error NOTIFY errorChanged) // empty without one

public:
    struct Dependencies {
        ChatService& chatService;
        PdfPrinter& printer;
        Desktop& desktop;
    };

    explicit ArtifactExport(Dependencies dependencies, QObject* parent = nullptr);
    ~ArtifactExport() override;

    // `chatId` is that of the open chat, below 0 without one.
    Q_INVOKABLE void downloadPDF(const Korvi::ArtifactSelection* selection, qint64 chatId);
    void downloadPDF(const Artifact& artifact, qint64 chatId);
    Q_INVOKABLE void openPDF();
    Q_INVOKABLE void showPDFInFolder();
    Q_INVOKABLE QUrl suggested(const QString& name) const; // for a dialog that saves
    Q_INVOKABLE void savePDF(const QUrl& file);
    Q_INVOKABLE void saveText(const QUrl& file, const QString& text);
    // The reader is done with the file or the error; what still runs is not wanted any more.
    Q_INVOKABLE void dismiss();

    bool isDownloadingPDF() const { return m_isDownloadingPDF; }
    QString pdfURL() const { return m_pdfURL; }
    bool showShareSheet() const { return m_showShareSheet; }
    QString error() const { return m_error; }

signals:
    void isDownloadingPDFChanged();
    void pdfURLChanged();
    void showShareSheetChanged();
    void errorChanged();

private:
    Task<void> make(Artifact artifact, qint64 chatId);
    QString write(const QString& title, const QByteArray& bytes);
    void save(const QUrl& file, const QByteArray& bytes);

    Dependencies m_dependencies;
    std::unique_ptr<QTemporaryDir> m_folder; // of the PDF; ends with the application

    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(
        ArtifactExport, bool, m_isDownloadingPDF, false, &ArtifactExport::isDownloadingPDFChanged)
    Q_OBJECT_BINDABLE_PROPERTY(ArtifactExport, QString, m_pdfURL, &ArtifactExport::pdfURLChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(
        ArtifactExport, bool, m_showShareSheet, false, &ArtifactExport::showShareSheetChanged)
    Q_OBJECT_BINDABLE_PROPERTY(ArtifactExport, QString, m_error, &ArtifactExport::errorChanged)

    TaskScope m_scope; // last: its tasks end before anything they use
};

}
