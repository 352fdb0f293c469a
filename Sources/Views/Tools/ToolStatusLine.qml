import QtQuick

// What a tool does for the answer under way.
Row {
    id: line

    required property string status

    Accessible.name: status
    Accessible.role: Accessible.StaticText
    spacing: Theme.gap2
    visible: status.length > 0

    StreamingDot {
        anchors.verticalCenter: parent.verticalCenter
    }
    Label {
        Accessible.ignored: true
        color: Theme.t2
        elide: Text.ElideRight
        text: line.status
        width: Math.min(implicitWidth, line.width - Theme.px(8) - line.spacing)
    }
}
