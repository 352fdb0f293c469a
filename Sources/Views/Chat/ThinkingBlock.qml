import QtQuick
import Korvi.Views // the types written in C++

// The reasoning behind an answer, folded until it is asked for.
Column {
    id: block

    required property string text
    required property bool open
    required property bool isThinking

    signal toggled
    signal copyWanted(string text)

    function deselect(): void {
        unfolded.item?.text.deselect()
    }

    function selectedText(): string {
        return unfolded.item?.text.selectedText() ?? ""
    }

    spacing: Theme.gap2

    BaseButton {
        id: pill

        Accessible.checkable: true
        Accessible.checked: block.open
        horizontalPadding: Theme.gap2 + 2
        implicitHeight: Theme.px(30)
        objectName: "thinkingPill"
        radius: height / 2
        text: block.isThinking ? "Размышляю…" : "Размышление"

        background: Rectangle {
            border.color: Theme.line2
            color: pill.down || pill.hovered ? Theme.hover : "transparent"
            radius: pill.radius
        }
        contentItem: Row {
            spacing: Theme.gap2

            Symbol {
                anchors.verticalCenter: parent.verticalCenter
                color: Theme.t2
                name: "chevron.right"
                rotation: block.open ? 90 : 0
                size: Theme.px(14)

                Behavior on rotation { NumberAnimation { duration: Theme.quick } }
            }
            Label {
                anchors.verticalCenter: parent.verticalCenter
                color: Theme.t2
                font.pixelSize: Theme.fontLabel
                rightPadding: Theme.gap1
                text: pill.text
            }
        }

        onClicked: block.toggled()
    }
    Loader {
        id: unfolded

        active: block.open
        visible: active
        width: parent.width

        // qmllint disable unqualified
        sourceComponent: Item {
            readonly property alias text: reasoning

            implicitHeight: reasoning.height

            Rectangle {
                color: Theme.line2
                height: parent.height
                radius: width / 2
                width: 2
                x: Theme.gap2
            }
            LongText {
                id: reasoning

                color: Theme.t2
                text: block.text
                width: parent.width - x
                x: Theme.gap5

                onCopyWanted: text => block.copyWanted(text)
            }
        }
        // qmllint enable unqualified
    }
}
