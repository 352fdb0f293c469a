import QtQuick
import Korvi.ViewModels

Column {
    id: section

    required property ThemeManager theme

    spacing: Theme.gap5

    Column {
        spacing: Theme.gap2
        width: parent.width

        Label {
            Accessible.role: Accessible.Heading
            color: Theme.t2
            font.pixelSize: Theme.fontLabel
            font.weight: Font.DemiBold
            text: "Тема"
        }
        Row {
            id: cards

            spacing: Theme.gap3
            width: parent.width

            Repeater {
                id: repeater

                model: section.theme.themes

                // qmllint disable unqualified
                ThemeCard {
                    required property int index
                    required property string modelData

                    chosen: section.theme.currentTheme === modelData
                    objectName: modelData + "Theme"
                    scheme: modelData
                    text: section.theme.label(modelData)
                    width: (cards.width - cards.spacing * (repeater.count - 1)) / repeater.count

                    KeyNavigation.left: index > 0 ? repeater.itemAt(index - 1) : null
                    KeyNavigation.right: index < repeater.count - 1 ? repeater.itemAt(index + 1) : null

                    onClicked: section.theme.chooseTheme(modelData)
                }
                // qmllint enable unqualified
            }
        }
    }
    TextSizeGroup {
        theme: section.theme
        width: parent.width
    }
}
