import QtQuick
import Korvi.ViewModels

// A file as a part of an answer.
CardPart {
    id: part

    required property string url
    required property string filename
    required property string mimetype
    property AnswerContext context: null

    readonly property FileDownloads downloads: context?.downloads ?? null
    readonly property FileDownload download: downloads?.of(url, filename) ?? null

    implicitHeight: card.implicitHeight

    FileCard {
        id: card

        error: part.download?.error ?? ""
        filename: part.filename
        focus: true
        isRunning: part.download?.isRunning ?? false
        kind: part.downloads?.kind(part.filename, part.mimetype) ?? ""
        openable: part.downloads?.isOpenable(part.filename) ?? false
        progress: part.download?.progress ?? -1
        savedName: part.download?.savedName ?? ""
        size: part.download?.size ?? ""
        width: part.width

        onCancelled: part.download?.cancel()
        onFolderWanted: part.download?.showInFolder()
        onOpenWanted: part.download?.open()
        onSaveAsWanted: question.ask(part.downloads.suggested(part.filename))
        onSaveWanted: part.download?.save()
    }
    SaveQuestion {
        id: question

        onAnswered: file => part.download?.saveAs(file)
    }
}
