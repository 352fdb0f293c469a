import QtQuick
import QtQuick.Templates as T

// What goes with the next message, above its text: the image that it is to change, files, and why one was not taken.
// One stop of the Tab key; Left and Right go from one to the next.
FocusScope {
    id: strip

    required property var attachments // a list model with the roles of AttachmentListModel, or null
    required property string editImage // address; empty without one
    required property string error // empty without one
    property real maximumHeight: Infinity // of the files; they scroll beyond

    property int current: 0 // of the chips in their order
    readonly property bool isEditing: editImage.length > 0
    readonly property int count: repeater.count + (isEditing ? 1 : 0)
    readonly property bool isEmpty: count === 0 && error.length === 0

    signal removed(string attachmentId)
    signal editingCancelled
    signal errorDismissed
    signal leaving // the keyboard has nothing left to be on

    function chips(): var {
        const all = isEditing ? [editChip] : []
        for (let i = 0; i < repeater.count; ++i)
            all.push(repeater.itemAt(i))
        return all
    }

    function focusAt(index: int): void {
        const all = chips()
        if (all.length === 0) {
            leaving()
            return
        }
        current = Math.max(0, Math.min(index, all.length - 1))
        const chip = all[current]
        chip.forceActiveFocus(Qt.TabFocusReason)
        scroller.contentY = Math.max(Math.min(scroller.contentY, chip.y), chip.y + chip.height - scroller.height)
    }

    // The keyboard goes on to what comes to stand in its place.
    function remove(chip: Item, how: var): void {
        const index = chips().indexOf(chip)
        const hadFocus = chip.activeFocus
        how()
        if (hadFocus)
            Qt.callLater(focusAt, index)
    }

    Accessible.name: "Вложения"
    Accessible.role: Accessible.List
    implicitHeight: column.height

    onCountChanged: current = Math.max(0, Math.min(current, count - 1))

    Keys.onLeftPressed: focusAt(current - 1)
    Keys.onRightPressed: focusAt(current + 1)

    Column {
        id: column

        spacing: Theme.gap2
        width: parent.width

        Flickable {
            id: scroller

            T.ScrollBar.vertical: ThinScrollBar {}
            boundsBehavior: Flickable.StopAtBounds
            clip: interactive
            contentHeight: flow.height
            height: Math.min(flow.height, strip.maximumHeight)
            interactive: flow.height > height
            visible: strip.count > 0
            width: parent.width

            Flow {
                id: flow

                spacing: Theme.gap2
                width: scroller.width - (scroller.interactive ? Theme.gap3 : 0)

                AttachmentChip {
                    id: editChip

                    category: "image"
                    closeText: "Не изменять изображение"
                    details: ""
                    error: ""
                    focusPolicy: strip.current === 0 || activeFocus ? Qt.TabFocus : Qt.NoFocus
                    isUploading: false
                    objectName: "editImageChip"
                    progress: 0
                    source: strip.editImage
                    text: "Правка изображения"
                    visible: strip.isEditing

                    onRemoved: strip.remove(editChip, () => strip.editingCancelled())
                }
                Repeater {
                    id: repeater

                    model: strip.attachments

                    // qmllint disable unqualified
                    delegate: AttachmentChip {
                        id: chip

                        required property int index
                        required property string attachmentId
                        required property string filename
                        required property string sizeText

                        details: sizeText
                        focusPolicy: strip.current === index + (strip.isEditing ? 1 : 0) || activeFocus
                            ? Qt.TabFocus : Qt.NoFocus
                        objectName: "attachmentChip"
                        text: filename

                        onRemoved: strip.remove(chip, () => strip.removed(attachmentId))
                    }
                    // qmllint enable unqualified
                }
            }
        }
        MessageStrip {
            dismissible: true
            objectName: "validationError"
            text: strip.error
            visible: strip.error.length > 0
            width: parent.width

            onDismissed: strip.errorDismissed()
        }
    }
}
