import QtQuick
import Korvi.Views // the types written in C++

// A document that an answer has made, or is making; a click shows it beside the conversation.
CardPart {
    id: card

    required property string title // empty when none has been told
    required property string kindName // as it came
    property real version: -1 // below 0 without one
    required property bool isGenerating
    property bool isSelected: false // it is the one that is shown

    // What nobody has told when the answer is over, nobody will.
    readonly property bool isPlaceholder: isGenerating && kindName === "loading"

    signal chosen

    Accessible.name: button.text
    Accessible.role: Accessible.Grouping
    implicitHeight: frame.height

    ArtifactKind {
        id: kind

        name: card.kindName
    }
    Rectangle {
        id: frame

        border.color: card.isSelected ? Theme.acc : Theme.line2
        color: "transparent"
        height: Theme.cardHeight
        radius: Theme.radiusCard
        width: Math.min(card.width, Theme.cardWidth)

        BaseButton {
            id: button

            Accessible.description: details.text
            anchors.fill: parent
            focus: true
            objectName: "artifactButton"
            padding: Theme.gap3
            radius: frame.radius
            text: card.title || (card.isGenerating ? "Создаю документ…" : "Без названия")

            background: Rectangle {
                color: button.down || button.hovered ? Theme.hover : "transparent"
                radius: button.radius
            }
            contentItem: Item {
                Shimmer {
                    id: tile

                    anchors.verticalCenter: parent.verticalCenter
                    height: width
                    lit: card.isGenerating ? Theme.line2 : unlit
                    radius: Theme.radiusRow
                    unlit: card.isSelected ? Theme.accbg : Theme.sunk
                    visible: card.isGenerating
                    width: Theme.cardTile
                }
                Rectangle {
                    anchors.fill: tile
                    color: card.isSelected ? Theme.accbg : Theme.sunk
                    radius: Theme.radiusRow
                    visible: !card.isGenerating
                }
                Symbol {
                    anchors.centerIn: tile
                    color: card.isSelected ? Theme.acc : Theme.t2
                    name: card.isPlaceholder ? "sparkles" : kind.symbol
                    size: Theme.px(18)
                }
                Column {
                    anchors.left: tile.right
                    anchors.leftMargin: Theme.gap3
                    anchors.right: spinner.visible ? spinner.left : chevron.left
                    anchors.rightMargin: Theme.gap2
                    anchors.verticalCenter: parent.verticalCenter

                    Label {
                        elide: Text.ElideRight
                        font.weight: Font.Medium
                        text: button.text
                        width: parent.width
                    }
                    Label {
                        id: details

                        color: Theme.t2
                        elide: Text.ElideRight
                        font.pixelSize: Theme.fontSmall
                        objectName: "artifactDetails"
                        text: kind.details(kind.label, card.version, card.isGenerating)
                        width: parent.width
                    }
                }
                Spinner {
                    id: spinner

                    anchors.right: parent.right
                    anchors.rightMargin: Theme.gap1
                    anchors.verticalCenter: parent.verticalCenter
                    running: card.isGenerating
                }
                Symbol {
                    id: chevron

                    anchors.right: parent.right
                    anchors.verticalCenter: parent.verticalCenter
                    color: Theme.t3
                    name: "chevron.right"
                    size: Theme.px(14)
                    visible: !spinner.visible
                }
            }

            onClicked: card.chosen()
        }
    }
}
