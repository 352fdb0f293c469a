import QtQuick
import Korvi.Views // the types written in C++

// One row of a table, with the line under it.
Item {
    id: row

    required property int index
    required property var cells // { text, isRich, plain } for each column
    required property bool isHeader
    required property TableRows rows
    required property var offsets // where columns begin
    required property bool selected

    readonly property var widths: rows.columnWidths
    readonly property var alignments: rows.alignments
    readonly property real tallest: {
        let height = Theme.leading(Theme.fontBody)
        for (let i = 0; i < texts.count; ++i)
            height = Math.max(height, texts.itemAt(i)?.implicitHeight ?? 0)
        return height
    }

    Accessible.name: cells.map(cell => cell.plain).join("; ")
    Accessible.role: Accessible.Row
    implicitHeight: Math.ceil(tallest) + Theme.cellPadding * 2 + Theme.hairline

    Rectangle {
        anchors.fill: parent
        color: Theme.selection
        visible: row.selected
    }
    Repeater {
        id: texts

        model: row.cells

        // qmllint disable unqualified
        Label {
            required property int index
            required property var modelData

            Accessible.ignored: true
            font: row.isHeader ? row.rows.headerFont : row.rows.cellFont
            horizontalAlignment: row.alignments[index] ?? Text.AlignLeft
            text: modelData.text
            textFormat: modelData.isRich ? Text.RichText : Text.PlainText
            verticalAlignment: Text.AlignTop
            width: Math.max(0, (row.widths[index] ?? 0) - row.rows.around)
            wrapMode: Text.Wrap
            x: (row.offsets[index] ?? 0) + Theme.gap1
            // Rich text has the air of its lines above them, plain text below.
            y: Theme.cellPadding - (modelData.isRich ? lineHeight - Math.ceil(metrics.height) : 0)
        }
        // qmllint enable unqualified
    }
    FontMetrics {
        id: metrics

        font: row.rows.cellFont
    }
    Rectangle {
        anchors.bottom: parent.bottom
        color: row.isHeader ? Theme.line2 : Theme.line
        height: Theme.hairline
        width: parent.width
    }
}
