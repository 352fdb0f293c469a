import QtQuick
import Korvi.Views // the types written in C++

// Over a video that does not play: why, and once more.
Column {
    id: failure

    required property string message

    signal againWanted

    spacing: Theme.gap2

    Label {
        color: Theme.stageText
        font.weight: Font.DemiBold
        horizontalAlignment: Text.AlignHCenter
        text: "Не удалось загрузить видео"
        width: parent.width
        wrapMode: Text.Wrap
    }
    Label {
        color: Theme.stageText
        elide: Text.ElideRight
        font.pixelSize: Theme.fontLabel
        horizontalAlignment: Text.AlignHCenter
        maximumLineCount: 2
        text: failure.message
        width: parent.width
        wrapMode: Text.Wrap
    }
    BaseButton {
        id: again

        anchors.horizontalCenter: parent.horizontalCenter
        horizontalPadding: Theme.gap4
        implicitHeight: Theme.buttonHeight
        objectName: "againButton"
        radius: Theme.radiusField
        text: "Попробовать снова"

        background: Rectangle {
            color: Theme.stageButton
            radius: again.radius
        }
        contentItem: Row {
            spacing: Theme.gap2

            Symbol {
                anchors.verticalCenter: parent.verticalCenter
                color: Theme.stageText
                name: "arrow.clockwise"
                size: Theme.icon
            }
            Label {
                anchors.verticalCenter: parent.verticalCenter
                color: Theme.stageText
                text: again.text
            }
        }

        onClicked: failure.againWanted()
    }
}
