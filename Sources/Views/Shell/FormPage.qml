import QtQuick

// A page with one small form in the middle; scrolls when the window is too low for it.
FocusScope {
    id: page

    default property alias rows: column.data
    property alias spacing: column.spacing

    Rectangle {
        anchors.fill: parent
        color: Theme.bg
    }
    Flickable {
        anchors.fill: parent
        boundsBehavior: Flickable.StopAtBounds
        contentHeight: Math.max(height, column.height + Theme.gap6 * 2)
        contentWidth: width
        interactive: contentHeight > height

        Column {
            id: column

            anchors.centerIn: parent
            width: Math.min(Theme.px(Theme.formWidth), parent.width - Theme.gap6 * 2)
        }
    }
}
