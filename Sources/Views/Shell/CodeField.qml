import QtQuick

// Four boxes over one input, so that typing, pasting, erasing and selecting work as in any field.
FocusScope {
    id: field

    property bool busy: false
    property bool failed: false

    readonly property int length: 4
    readonly property alias text: input.text
    readonly property bool complete: input.length === length

    signal completed(code: string)

    function reset(): void {
        input.handed = ""
        input.clear()
        input.forceActiveFocus()
    }

    implicitHeight: boxes.height
    implicitWidth: boxes.width

    Row {
        id: boxes

        spacing: Theme.gap2 + 2

        Repeater {
            model: field.length

            // qmllint disable unqualified
            CodeBox {
                required property int index

                character: input.text.charAt(index)
                current: input.activeFocus && !field.busy
                    && index === Math.min(input.cursorPosition, field.length - 1)
                dimmed: field.busy
                failed: field.failed && input.length === 0
                selected: index >= input.selectionStart && index < input.selectionEnd
            }
            // qmllint enable unqualified
        }
    }
    TextInput {
        id: input

        property string handed // the code that was given out last

        Accessible.description: "%1 знака; отправляется сам".arg(field.length)
        Accessible.name: "Код из письма"
        Accessible.role: Accessible.EditableText
        activeFocusOnTab: true
        anchors.fill: parent
        cursorVisible: false
        focus: true
        inputMethodHints: Qt.ImhNoPredictiveText | Qt.ImhNoAutoUppercase
        objectName: "codeField"
        opacity: 0
        readOnly: field.busy

        onTextChanged: {
            const clean = text.replace(/\s+/g, "").slice(0, field.length)
            if (clean !== text) {
                text = clean // comes back here with the clean text
                return
            }
            if (clean.length < field.length) {
                handed = ""
            } else if (clean !== handed && !field.busy) {
                handed = clean
                field.completed(clean)
            }
        }
    }
    MouseArea {
        anchors.fill: parent
        cursorShape: Qt.IBeamCursor

        onPressed: mouse => {
            input.forceActiveFocus()
            input.cursorPosition = Math.min(input.length, Math.floor(mouse.x / width * field.length))
        }
        onDoubleClicked: input.selectAll()
    }
}
