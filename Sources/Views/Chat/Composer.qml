import QtQuick
import QtQuick.Templates as T
import Korvi.Views // the types written in C++
import "InputMode.js" as InputMode

// Where a message is written. Return sends, Shift+Return breaks the line; grows to eight lines, then scrolls. Up in an
// empty field asks for the last question; Down or Esc takes it away again as long as it stands as it came.
FocusScope {
    id: composer

    required property string text // as the model has it; what is typed goes out through edited()
    required property bool canSend
    required property bool generating
    property string mode: "none" // of InputMode.js
    property var attachments: null // files that wait, see AttachmentStrip
    property string editImage // that the next message is to change; empty without one
    property string attachmentError // why a file was not taken; empty without one
    property var paste: () => false // takes what is no text from the clipboard
    property real maximumHeight: Infinity

    readonly property bool editingImage: editImage.length > 0
    readonly property int inset: Theme.gap4
    readonly property real textTop: strip.visible ? strip.y + strip.height + Theme.gap3 : Theme.gap4
    readonly property real lineHeight: Theme.leading(edit.font.pixelSize)
    readonly property real barHeight: bar.height
    property string recalled // what came back by the Up key

    signal edited(text: string)
    signal recallRequested
    signal modeChosen(mode: string)
    signal editingImageCancelled
    signal filesWanted(int filter) // of ComposerAttachments.nameFilters()
    signal attachmentRemoved(string attachmentId)
    signal attachmentErrorDismissed
    signal send
    signal stop

    // To the text, wherever in the composer the focus was.
    function takeFocus(): void {
        edit.forceActiveFocus()
    }

    function submit(): void {
        if (canSend && !generating)
            send()
    }

    // The answer to recallRequested.
    function recall(question: string): void {
        recalled = question
        edited(question)
    }

    function takeBack(): bool {
        if (recalled.length === 0 || edit.text !== recalled)
            return false
        recalled = ""
        edited("")
        return true
    }

    implicitHeight: Math.min(maximumHeight, textTop + Math.min(edit.contentHeight, lineHeight * 8) + Theme.gap3
        + barHeight + Theme.gap3)

    // What comes from outside is gone on with at its end.
    onTextChanged: {
        if (edit.text === text)
            return
        edit.text = text
        edit.cursorPosition = edit.length
    }
    Component.onCompleted: edit.cursorPosition = edit.length

    FontMetrics {
        id: metrics

        font: edit.font
    }
    LineSpacing {
        distance: Math.max(0, composer.lineHeight - metrics.height)
        document: edit.textDocument
    }
    SoftShadow {
        around: Theme.radiusComposer
    }
    Rectangle {
        anchors.fill: parent
        border.color: Theme.line2
        color: Theme.raise
        radius: Theme.radiusComposer
    }
    MouseArea {
        anchors.fill: parent
        cursorShape: Qt.IBeamCursor

        onPressed: edit.forceActiveFocus()
    }
    AttachmentStrip {
        id: strip

        attachments: composer.attachments
        editImage: composer.editImage
        error: composer.attachmentError
        maximumHeight: Math.min(Theme.attachmentHeight * 3 + Theme.gap2 * 2, composer.maximumHeight / 3)
        visible: !isEmpty
        width: parent.width - Theme.gap3 * 2
        x: Theme.gap3
        y: Theme.gap3

        onEditingCancelled: composer.editingImageCancelled()
        onErrorDismissed: composer.attachmentErrorDismissed()
        onLeaving: edit.forceActiveFocus()
        onRemoved: attachmentId => composer.attachmentRemoved(attachmentId)
    }
    Flickable {
        id: scroller

        function reveal(r: rect): void {
            if (contentY > r.y)
                contentY = r.y
            else if (contentY + height < r.y + r.height)
                contentY = r.y + r.height - height
        }

        T.ScrollBar.vertical: ThinScrollBar {}
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        contentHeight: edit.height
        contentWidth: width
        height: composer.height - y - Theme.gap3 * 2 - composer.barHeight
        interactive: contentHeight > height
        width: parent.width - x - Theme.gap2
        x: composer.inset
        y: composer.textTop

        TextEdit {
            id: edit

            Accessible.description: "Enter отправляет, Shift+Enter начинает новую строку"
            Accessible.multiLine: true
            Accessible.name: "Сообщение"
            Accessible.role: Accessible.EditableText
            activeFocusOnTab: true
            color: Theme.t1
            focus: true
            font.family: Theme.family
            font.pixelSize: Theme.fontBody
            height: Math.max(contentHeight, scroller.height)
            objectName: "composer"
            renderType: Text.NativeRendering
            selectByMouse: true
            selectedTextColor: Theme.t1
            selectionColor: Theme.selection
            text: composer.text
            textFormat: TextEdit.PlainText
            width: scroller.width - Theme.gap3
            wrapMode: TextEdit.Wrap

            Keys.onPressed: event => {
                if (event.matches(StandardKey.Paste)) {
                    event.accepted = composer.paste()
                    return
                }
                if (event.key !== Qt.Key_Return && event.key !== Qt.Key_Enter)
                    return
                if (event.modifiers & Qt.ShiftModifier)
                    return
                event.accepted = true
                composer.submit()
            }
            Keys.onDownPressed: event => {
                const lastLine = cursorRectangle.y + cursorRectangle.height * 1.5 >= contentHeight
                event.accepted = lastLine && composer.takeBack()
            }
            Keys.onEscapePressed: event => event.accepted = composer.takeBack()
            Keys.onUpPressed: event => {
                event.accepted = length === 0
                if (event.accepted)
                    composer.recallRequested()
            }
            // Tab leaves the composer, as it leaves any field.
            Keys.onTabPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
            Keys.onBacktabPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)
            onCursorRectangleChanged: scroller.reveal(cursorRectangle)
            onTextChanged: if (text !== composer.text) composer.edited(text)
        }
        Label {
            color: Theme.t3
            elide: Text.ElideRight
            height: metrics.height
            objectName: "composerPlaceholder"
            text: InputMode.placeholder(composer.mode, composer.editingImage)
            visible: edit.length === 0 && edit.preeditText.length === 0
            width: edit.width
            x: Theme.hairline
        }
    }
    ComposerBar {
        id: bar

        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.gap3
        anchors.left: parent.left
        anchors.leftMargin: Theme.gap2
        anchors.right: parent.right
        anchors.rightMargin: Theme.gap3
        canSend: composer.canSend
        generating: composer.generating
        hintShown: edit.lineCount > 1 || edit.length > 40
        mode: composer.mode

        onFilesWanted: filter => composer.filesWanted(filter)
        onModeChosen: mode => {
            composer.modeChosen(mode)
            edit.forceActiveFocus()
        }
        onSend: composer.submit()
        onStop: composer.stop()
    }
}
