import QtQuick
import Korvi.ViewModels

// The document that is looked at, bound to the conversation.
FocusScope {
    id: panel

    required property ArtifactSelection artifacts
    required property ArtifactExport files
    required property real chatId

    function copy(text: string): void {
        clipboard.text = text
        clipboard.selectAll()
        clipboard.copy()
        clipboard.clear()
    }

    ArtifactDetailView {
        anchors.fill: parent
        artifactId: panel.artifacts.selectedArtifactId
        focus: true
        isDownloadingPDF: panel.files.isDownloadingPDF
        isGenerating: panel.artifacts.isGenerating
        kindName: panel.artifacts.kind
        pdfError: panel.files.error
        pdfURL: panel.files.pdfURL
        showShareSheet: panel.files.showShareSheet
        text: panel.artifacts.text
        title: panel.artifacts.title
        version: panel.artifacts.shownVersion

        onArtifactIdChanged: panel.files.dismiss()
        onVersionChanged: panel.files.dismiss()
        onClosed: panel.artifacts.close()
        onCopyWanted: text => panel.copy(text)
        onPdfDismissed: panel.files.dismiss()
        onPdfOpened: panel.files.openPDF()
        onPdfSaved: pdfQuestion.ask(panel.files.suggested(panel.files.pdfURL.replace(/^.*\//, "")))
        onPdfShown: panel.files.showPDFInFolder()
        onPdfWanted: panel.files.downloadPDF(panel.artifacts, panel.chatId)
        onSaveWanted: name => question.ask(panel.files.suggested(name))
    }
    SaveQuestion {
        id: question

        onAnswered: file => panel.files.saveText(file, String(panel.artifacts.text))
    }
    SaveQuestion {
        id: pdfQuestion

        onAnswered: file => panel.files.savePDF(file)
    }
    TextEdit {
        id: clipboard

        Accessible.ignored: true
        visible: false
    }
}
