import QtQuick

// Above a code block: its language, and what can be done with it.
Item {
    id: header

    required property string language
    required property bool wraps
    required property bool canWrap

    signal copyWanted
    signal wrapToggled

    implicitHeight: Theme.codeHeader

    Label {
        anchors.left: parent.left
        anchors.leftMargin: Theme.gap4
        anchors.right: buttons.left
        anchors.rightMargin: Theme.gap2
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.t2
        elide: Text.ElideRight
        font.family: Theme.monoFamily
        font.pixelSize: Theme.fontSmall
        font.weight: Font.Bold
        text: header.language
    }
    Row {
        id: buttons

        anchors.right: parent.right
        anchors.rightMargin: Theme.gap2
        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.gap1

        IconButton {
            Accessible.checkable: true
            Accessible.checked: header.wraps
            color: header.wraps ? Theme.acc : Theme.t2
            implicitHeight: Theme.actionHeight
            implicitWidth: Theme.actionHeight
            objectName: "wrapButton"
            symbol: "text.append"
            symbolSize: Theme.px(15)
            text: "Переносить строки"
            visible: header.canWrap || header.wraps

            onClicked: header.wrapToggled()
        }
        CopyButton {
            objectName: "copyCodeButton"

            onClicked: header.copyWanted()
        }
    }
    Rectangle {
        anchors.bottom: parent.bottom
        color: Theme.line
        height: Theme.hairline
        width: parent.width
    }
}
