import QtQuick
import QtQuick.Templates as T

T.TextField {
    id: field

    Accessible.name: placeholderText
    Accessible.role: Accessible.EditableText
    color: enabled ? Theme.t1 : Theme.t3
    font.family: Theme.family
    font.pixelSize: Theme.fontBody
    implicitHeight: Theme.fieldHeight
    implicitWidth: Theme.formWidth
    leftPadding: Theme.gap3
    placeholderTextColor: Theme.t3
    renderType: Text.NativeRendering
    rightPadding: Theme.gap3
    selectByMouse: true
    selectedTextColor: Theme.t1
    selectionColor: Theme.halo
    verticalAlignment: TextInput.AlignVCenter

    background: Rectangle {
        border.color: field.activeFocus ? Theme.acc : Theme.line2
        color: Theme.raise
        radius: Theme.radiusField

        FocusRing {
            around: Theme.radiusField
            shown: field.activeFocus
        }
    }

    Label {
        color: field.placeholderTextColor
        elide: Text.ElideRight
        font: field.font
        height: field.height
        text: field.placeholderText
        visible: field.length === 0 && field.preeditText.length === 0
        width: field.width - field.leftPadding - field.rightPadding
        x: field.leftPadding
    }
}
