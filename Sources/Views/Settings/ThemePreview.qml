import QtQuick

// The main window in small, in the colours of one scheme.
Rectangle {
    id: preview

    property alias dark: colors.dark

    readonly property real unit: width / 40

    // qmllint disable unqualified
    component Line: Rectangle {
        color: colors.line2
        height: Math.max(2, Math.round(preview.unit))
        radius: height / 2
    }
    // qmllint enable unqualified

    Accessible.ignored: true
    clip: true
    color: colors.bg
    radius: Theme.radiusRow

    ThemeColors {
        id: colors

        dark: false
    }
    Rectangle {
        id: side

        color: colors.side
        height: parent.height
        radius: preview.radius
        width: preview.unit * 12

        Rectangle { // its right end is straight
            anchors.right: parent.right
            color: parent.color
            height: parent.height
            width: preview.radius
        }
        Column {
            spacing: preview.unit * 1.4
            x: preview.unit * 2
            y: preview.unit * 3

            Line { color: colors.t3; width: preview.unit * 6 }
            Line { width: preview.unit * 8 }
            Line { width: preview.unit * 7 }
            Line { width: preview.unit * 8 }
        }
    }
    Rectangle {
        anchors.right: parent.right
        anchors.rightMargin: preview.unit * 2.5
        color: colors.accbg
        height: preview.unit * 4
        radius: height / 2
        width: preview.unit * 12
        y: preview.unit * 3

        Line {
            anchors.centerIn: parent
            color: colors.acc
            width: preview.unit * 8
        }
    }
    Column {
        anchors.left: side.right
        anchors.leftMargin: preview.unit * 2.5
        spacing: preview.unit * 1.3
        y: preview.unit * 9

        Line { color: colors.t2; width: preview.unit * 18 }
        Line { color: colors.t2; width: preview.unit * 20 }
        Line { color: colors.t2; width: preview.unit * 11 }
    }
    Rectangle {
        anchors.bottom: parent.bottom
        anchors.bottomMargin: preview.unit * 2
        anchors.left: side.right
        anchors.leftMargin: preview.unit * 2.5
        anchors.right: parent.right
        anchors.rightMargin: preview.unit * 2.5
        border.color: colors.line2
        color: colors.raise
        height: preview.unit * 4
        radius: height / 2

        Rectangle {
            anchors.right: parent.right
            anchors.rightMargin: preview.unit * 0.8
            anchors.verticalCenter: parent.verticalCenter
            color: colors.acc
            height: width
            radius: width / 2
            width: preview.unit * 2.4
        }
    }
}
