import QtQuick

// One line of text with the places marked that a search found. What comes before the first place gives way when that
// would be elided otherwise.
Label {
    id: label

    property string plain
    property var marks: [] // start, length, start, length ... in `plain`

    readonly property int cut: marks.length > 1 ? cutBefore(marks[0], marks[0] + marks[1]) : 0

    function escaped(piece: string): string {
        return piece.replace(/&/g, "&amp;").replace(/</g, "&lt;").replace(/>/g, "&gt;")
    }

    // How much of the beginning has to go for the end of a place to be seen.
    function cutBefore(start: int, end: int): int {
        if (metrics.advanceWidth(plain) <= width || metrics.advanceWidth(plain.substring(0, end) + "…") <= width)
            return 0
        let cut = 1
        while (cut < start && metrics.advanceWidth("…" + plain.substring(cut, end) + "…") > width * 0.7)
            ++cut
        return cut
    }

    function markup(): string {
        let text = cut > 0 ? "…" : ""
        let done = cut
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

    FontMetrics {
        id: metrics

        // Marked places are drawn bold.
        font.bold: true
        font.family: label.font.family
        font.pixelSize: label.font.pixelSize
    }
}
