import QtQuick
import Korvi.Views // the types written in C++
import "InputMode.js" as InputMode

PopupMenu {
    id: menu

    required property string mode

    signal chosen(mode: string)

    firstIndex: 1 + Math.max(0, InputMode.modes.findIndex(mode => mode.id === menu.mode))
    implicitWidth: Theme.px(Theme.wideMenuWidth)
    objectName: "modeMenu"
    y: -implicitHeight - Theme.gap1

    Label {
        Accessible.role: Accessible.Heading
        color: Theme.t3
        font.pixelSize: Theme.fontSmall
        font.weight: Font.DemiBold
        height: Theme.rowHeight
        leftPadding: Theme.gap2
        text: "Режимы"
    }
    Instantiator {
        model: InputMode.modes

        // qmllint disable unqualified
        delegate: TitledMenuItem {
            required property var modelData

            checked: modelData.id === menu.mode
            objectName: "mode." + modelData.id
            subtitle: modelData.subtitle
            symbol: modelData.symbol
            text: modelData.title

            onTriggered: menu.chosen(modelData.id === menu.mode ? "none" : modelData.id)
        }
        // qmllint enable unqualified

        onObjectAdded: (index, object) => menu.insertItem(index + 1, object)
        onObjectRemoved: (index, object) => menu.removeItem(object)
    }
}
