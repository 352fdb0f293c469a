import QtQml
import Korvi.ViewModels

// What the parts of answers need of their surroundings beyond their own block.
QtObject {
    property FileDownloads downloads: null
    property ArtifactSelection artifacts: null
    property ComposerAttachments attachments: null
    property bool canSend: false // nothing is under way
    property string toolStatus // of the answer under way; empty when no tool is at work
    property bool hasPlaceholder: false // which then tells the status

    // What the reader did to an answer: rows are made again when they come back into view.
    readonly property var kept: ({})

    function keptOf(key: string): var {
        kept[key] = kept[key] ?? {}
        return kept[key]
    }

    signal imagesWanted(var images, int index) // { url, alt }, isOurs for a file of the user's own
    signal diagramWanted(string code) // larger
    signal sendWanted(string file) // of what has not gone up with its message
}
