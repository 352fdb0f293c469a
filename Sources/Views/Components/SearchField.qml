import QtQuick
import QtQuick.Templates as T
import Korvi.Views // the types written in C++

// A field to search in, as low as a row. Esc empties it; in an empty one Esc is for whoever stands behind.
T.TextField {
    id: field

    property alias clearText: clearButton.text

    Accessible.name: placeholderText
    Accessible.role: Accessible.EditableText
    Accessible.searchEdit: true
    color: Theme.t1
    font.family: Theme.family
    font.pixelSize: Theme.fontBody
    hoverEnabled: true
    implicitHeight: Theme.rowHeight
    implicitWidth: Theme.formWidth
    leftPadding: Theme.gap2 + Theme.icon + Theme.gap2
    placeholderText: "Поиск"
    placeholderTextColor: Theme.t2
    renderType: Text.NativeRendering
    rightPadding: clearButton.visible ? clearButton.width : Theme.gap2
    selectByMouse: true
    selectedTextColor: Theme.t1
    selectionColor: Theme.selection
    verticalAlignment: TextInput.AlignVCenter

    background: Rectangle {
        border.color: Theme.acc
        border.width: field.activeFocus ? Theme.hairline : 0
        color: field.activeFocus || field.length > 0 ? Theme.raise : field.hovered ? Theme.hover : "transparent"
        radius: Theme.radiusRow

        FocusRing {
            shown: field.activeFocus
        }
    }

    Keys.onEscapePressed: event => {
        event.accepted = length > 0
        clear()
    }

    Symbol {
        anchors.left: parent.left
        anchors.leftMargin: Theme.gap2
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.t2
        name: "magnifyingglass"
        size: Theme.icon
    }
    Label {
        Accessible.ignored: true
        color: field.placeholderTextColor
        elide: Text.ElideRight
        font: field.font
        height: field.height
        text: field.placeholderText
        visible: field.length === 0 && field.preeditText.length === 0
        width: field.width - field.leftPadding - field.rightPadding
        x: field.leftPadding
    }
    IconButton {
        id: clearButton

        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        focusPolicy: Qt.NoFocus
        objectName: "clearSearchButton"
        symbol: "xmark"
        text: "Очистить"
        visible: field.length > 0

        onClicked: {
            field.clear()
            field.forceActiveFocus()
        }
    }
}
