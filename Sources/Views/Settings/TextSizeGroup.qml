import QtQuick
import Korvi.ViewModels

// The size of the text. While the handle is dragged only the preview follows: everything else would move the slider
// away from under the pointer.
SettingsGroup {
    id: group

    required property ThemeManager theme

    readonly property int size: Math.round(slider.value)

    title: "Размер текста"

    Item {
        height: sliderRow.height + Theme.gap4 * 2
        width: parent.width

        Item {
            id: sliderRow

            anchors.left: parent.left
            anchors.leftMargin: Theme.gap4
            anchors.right: parent.right
            anchors.rightMargin: Theme.gap4
            anchors.verticalCenter: parent.verticalCenter
            height: slider.implicitHeight

            Label {
                id: small

                anchors.verticalCenter: parent.verticalCenter
                color: Theme.t2
                font.pixelSize: group.theme.minimumFontSize
                text: "А"
            }
            StepSlider {
                id: slider

                anchors.left: small.right
                anchors.leftMargin: Theme.gap3
                anchors.right: large.left
                anchors.rightMargin: Theme.gap3
                anchors.verticalCenter: parent.verticalCenter
                from: group.theme.minimumFontSize
                name: "Размер текста"
                objectName: "textSizeSlider"
                stepSize: 1
                to: group.theme.maximumFontSize
                value: group.theme.chatFontSize

                onChosen: value => group.theme.chatFontSize = value
            }
            Label {
                id: large

                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                color: Theme.t2
                font.pixelSize: group.theme.maximumFontSize
                text: "А"
            }
        }
    }
    Item {
        height: preview.height + Theme.gap4
        width: parent.width

        Rectangle {
            id: preview

            color: Theme.sunk
            height: words.implicitHeight + Theme.gap3 * 2
            radius: Theme.radiusCard
            width: parent.width - Theme.gap4 * 2
            x: Theme.gap4

            Label {
                id: words

                font.pixelSize: group.size
                objectName: "textSizePreview"
                text: "Привет! Я Корви — ваш AI-ассистент. Вот как будет выглядеть текст в чате."
                width: parent.width - Theme.gap4 * 2
                wrapMode: Text.Wrap
                x: Theme.gap4
                y: Theme.gap3
            }
        }
    }
    SettingsRow {
        separated: true
        title: "Текущий размер: %1".arg(group.size)

        SecondaryButton {
            objectName: "resetTextSizeButton"
            text: "Сбросить"
            visible: group.size !== group.theme.defaultFontSize

            onClicked: group.theme.chatFontSize = group.theme.defaultFontSize
        }
    }
}
