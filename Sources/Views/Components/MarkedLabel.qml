import QtQuick

// One line of text with the places marked that a search found.
Label {
    id: label

    property string plain
    property var marks: [] // start, length, start, length ... in `plain`

    function escaped(piece: string): string {
        return piece.replace(/&/g, "&amp;").replace(/</g, "&lt;").replace(/>/g, "&gt;")
    }

    function markup(): string {
        let text = ""
        let done = 0
        for (let i = 0; i + 1 < marks.length; i += 2) {
            const end = marks[i] + marks[i + 1]
            text += escaped(plain.substring(done, marks[i])) + "<b><font color=\"" + Theme.acc + "\">"
                + escaped(plain.substring(marks[i], end)) + "</font></b>"
            done = end
        }
        return text + escaped(plain.substring(done))
    }

    Accessible.name: plain
    elide: Text.ElideRight
    maximumLineCount: 1
    text: marks.length > 0 ? markup() : plain
    textFormat: marks.length > 0 ? Text.StyledText : Text.PlainText
}
