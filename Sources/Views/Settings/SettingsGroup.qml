import QtQuick

// Rows that belong together, in one card under a small heading.
Column {
    id: group

    property string title
    default property alias rows: rowsColumn.data

    spacing: Theme.gap2

    Label {
        Accessible.role: Accessible.Heading
        color: Theme.t2
        font.pixelSize: Theme.fontLabel
        font.weight: Font.DemiBold
        text: group.title
        visible: text.length > 0
    }
    Rectangle {
        border.color: Theme.line
        color: Theme.raise
        height: rowsColumn.height
        radius: Theme.radiusCard
        width: parent.width

        Column {
            id: rowsColumn

            width: parent.width
        }
    }
}
