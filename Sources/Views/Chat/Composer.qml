import QtQuick
import QtQuick.Templates as T
import Korvi.Views // the types written in C++

// Where a message is written. Return sends, Shift+Return breaks the line; grows to eight lines, then scrolls.
FocusScope {
    id: composer

    required property string text // as the model has it; what is typed goes out through edited()
    required property bool canSend
    required property bool generating
    property real maximumHeight: Infinity

    readonly property int inset: Theme.gap4
    readonly property real lineHeight: Theme.leading(edit.font.pixelSize)
    readonly property real barHeight: Theme.roundButton

    signal edited(text: string)
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

    implicitHeight: Math.min(maximumHeight, Theme.gap4 + Math.min(edit.contentHeight, lineHeight * 8) + Theme.gap3
        + barHeight + Theme.gap3)

    onTextChanged: if (edit.text !== text) edit.text = text

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
        height: composer.height - Theme.gap4 - Theme.gap3 * 2 - composer.barHeight
        interactive: contentHeight > height
        width: parent.width - x - Theme.gap2
        x: composer.inset
        y: Theme.gap4

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
                if (event.key !== Qt.Key_Return && event.key !== Qt.Key_Enter)
                    return
                if (event.modifiers & Qt.ShiftModifier)
                    return
                event.accepted = true
                composer.submit()
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
            text: "Спросите что угодно"
            visible: edit.length === 0 && edit.preeditText.length === 0
            width: edit.width
            x: Theme.hairline
        }
    }
    Label {
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.gap3
        anchors.left: parent.left
        anchors.leftMargin: composer.inset
        color: Theme.t3
        font.pixelSize: Theme.fontSmall
        height: composer.barHeight
        opacity: edit.lineCount > 1 || edit.length > 40 ? 1 : 0
        text: "Shift+Enter — новая строка"
        visible: composer.width > Theme.px(420)

        Behavior on opacity { NumberAnimation { duration: Theme.calm } }
    }
    RoundButton {
        anchors.bottom: parent.bottom
        anchors.margins: Theme.gap3
        anchors.right: parent.right
        enabled: composer.canSend
        objectName: "sendButton"
        prominent: true
        symbol: "arrow.up"
        text: "Отправить"
        visible: !composer.generating

        onClicked: composer.submit()
    }
    RoundButton {
        anchors.bottom: parent.bottom
        anchors.margins: Theme.gap3
        anchors.right: parent.right
        objectName: "stopButton"
        prominent: true
        symbol: "stop"
        text: "Остановить ответ"
        visible: composer.generating

        onClicked: composer.stop()
    }
}
