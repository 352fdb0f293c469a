import QtQuick
import Korvi.Views // the types written in C++

// A row of cards that scrolls sideways; the arrow keys go from one to the next.
SidewaysScroll {
    id: carousel

    required property var model
    required property Component delegate // with the role `modelData` and `index`
    property int rest: 0 // how many more there are than are shown
    property string restText // what the button that shows them is called

    signal restWanted

    function reveal(item: Item): void {
        const x = item.x
        if (x < area.contentX)
            scrollBy(x - area.contentX)
        else if (x + item.width > area.contentX + area.width)
            scrollBy(x + item.width - area.contentX - area.width)
    }

    function move(by: int): bool {
        const buttons = []
        for (let i = 0; i < row.children.length; ++i) {
            const button = row.children[i] as BaseButton
            if (button?.visible)
                buttons.push(button)
        }
        const at = buttons.findIndex(item => item.activeFocus)
        if (at < 0 || at + by < 0 || at + by >= buttons.length)
            return false
        buttons[at + by].forceActiveFocus(Qt.TabFocusReason)
        return true
    }

    flickable: area
    implicitHeight: row.height
    step: Theme.px(120)

    Keys.onLeftPressed: event => event.accepted = move(-1)
    Keys.onRightPressed: event => event.accepted = move(1)

    Flickable {
        id: area

        anchors.fill: parent
        anchors.margins: -Theme.haloWidth // room for the ring around what has the keyboard
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        contentHeight: height
        contentWidth: row.width + Theme.haloWidth * 2
        interactive: false

        Row {
            id: row

            readonly property BaseButton focused: carousel.Window.activeFocusItem as BaseButton

            spacing: Theme.gap2
            x: Theme.haloWidth
            y: Theme.haloWidth

            onFocusedChanged: {
                if (focused && focused.parent === row)
                    carousel.reveal(focused)
            }

            Repeater {
                delegate: carousel.delegate
                model: carousel.model
            }
            BaseButton {
                id: more

                Accessible.name: carousel.restText
                anchors.verticalCenter: parent.verticalCenter
                hint: carousel.restText
                implicitHeight: Theme.px(44)
                implicitWidth: Math.max(implicitHeight, label.implicitWidth + Theme.gap3 * 2)
                objectName: "restButton"
                radius: height / 2
                text: "+%1".arg(carousel.rest)
                visible: carousel.rest > 0

                background: Rectangle {
                    color: more.down || more.hovered ? Theme.line : Theme.sunk
                    radius: more.radius
                }
                contentItem: Label {
                    id: label

                    color: Theme.t2
                    font.weight: Font.Medium
                    horizontalAlignment: Text.AlignHCenter
                    text: more.text
                }

                onClicked: carousel.restWanted()
            }
        }
    }
    // The cards go on beyond the edge.
    Rectangle {
        anchors.right: parent.right
        anchors.rightMargin: -Theme.haloWidth
        gradient: Gradient {
            orientation: Gradient.Horizontal

            GradientStop { color: Qt.alpha(Theme.bg, 0); position: 0 }
            GradientStop { color: Theme.bg; position: 1 }
        }
        height: parent.height
        visible: area.contentX + area.width < area.contentWidth - 1
        width: Theme.gap8
    }
}
