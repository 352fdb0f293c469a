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

    implicitHeight: card.implicitHeight

    VideoCard {
        id: card

        error: part.download?.error ?? ""
        file: part.download?.fetched ?? ""
        focus: true
        progress: part.download?.progress ?? -1
        url: part.url
        width: part.width

        onFileWanted: {
            if (!part.download && Links.isMedia(part.url))
                part.download = part.context?.downloads?.of(part.url, part.url.replace(/[?#].*$/, "").replace(/^.*\//, "")) ?? null
            part.download?.fetch()
        }
        onLinkOpened: url => Links.open(url)
    }
}
