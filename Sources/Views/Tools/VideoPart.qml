import QtQuick
import Korvi.ViewModels
import "Links.js" as Links

// A video as a part of an answer. It is fetched before it plays: the player itself stands still while a server is silent,
// and the client with it.
CardPart {
    id: part

    required property string url
    property AnswerContext context: null

    property FileDownload download: null // from the first time it is wanted

    readonly property string name: url.replace(/[?#].*$/, "").replace(/^.*\//, "")

    // Null where nothing may be fetched from there.
    function wanted(): FileDownload {
        if (!download && Links.isMedia(url))
            download = context?.downloads?.of(url, name) ?? null
        return download
    }

    implicitHeight: card.implicitHeight

    VideoCard {
        id: card

        error: part.download?.error ?? ""
        file: part.download?.fetched ?? ""
        focus: true
        isRunning: part.download?.isRunning ?? false
        progress: part.download?.progress ?? -1
        savedName: part.download?.savedName ?? ""
        size: part.download?.size ?? ""
        url: part.url
        width: part.width

        onCancelled: part.download?.cancel()
        onFileWanted: part.wanted()?.fetch()
        onFolderWanted: part.wanted()?.showInFolder()
        onLinkOpened: url => Links.open(url)
        onOpenWanted: part.wanted()?.open()
        onSaveAsWanted: {
            if (part.wanted())
                question.ask(part.context.downloads.suggested(part.name))
        }
        onSaveWanted: part.wanted()?.save()
    }
    SaveQuestion {
        id: question

        onAnswered: file => part.download?.saveAs(file)
    }
}
