import QtQuick
import QtQuick.Templates as T
import Korvi.ViewModels

// The chats of the user, favourites first, or those of them that a search finds. One stop of the Tab key: arrows,
// Home and End move inside, Return opens, F2 renames, Delete deletes, the menu key opens the menu of a chat; letters
// go to the search.
ListView {
    id: list

    required property var chats
    required property real activeChatId
    property string query
    property real menuChatId: -1 // whose menu stands open
    readonly property int rows: filter.count // `count` follows it only with the next frame

    signal chosen(chatId: real)
    signal renameRequested(chatId: real, name: string)
    signal deleteRequested(chatId: real, name: string)
    signal menuRequested(chatId: real, name: string, isFavorite: bool, item: Item, x: real, y: real)
    signal typed(text: string) // the beginning of a search
    signal leftUpwards

    function showActive(): void {
        const row = filter.rowOf(activeChatId)
        if (row < 0)
            return
        if (!activeFocus)
            currentIndex = row
        positionViewAtIndex(row, ListView.Contain)
    }

    function open(row: int): void {
        if (row >= 0 && row < rows)
            chosen(filter.chatIdAt(row))
    }

    function ask(row: int, question: var): void {
        if (row >= 0 && row < rows)
            question(filter.chatIdAt(row), filter.nameAt(row))
    }

    function openMenu(): void {
        const row = currentItem
        if (row)
            menuRequested(filter.chatIdAt(currentIndex), filter.nameAt(currentIndex), filter.isFavoriteAt(currentIndex),
                row, Theme.gap2, row.height)
    }

    function move(to: int): void {
        currentIndex = Math.max(0, Math.min(rows - 1, to))
    }

    Accessible.name: "Список чатов"
    Accessible.role: Accessible.List
    T.ScrollBar.vertical: ThinScrollBar {}
    activeFocusOnTab: true
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    currentIndex: -1
    highlightMoveDuration: 0
    highlightMoveVelocity: -1
    keyNavigationEnabled: true
    model: filter
    objectName: "chatList"
    reuseItems: true
    section.criteria: ViewSection.FullString
    section.property: "isFavorite"

    // qmllint disable unqualified
    delegate: ChatRow {
        id: row

        required property real chatId
        required property string name
        required property bool isFavorite
        required age
        required marks
        required property int index
        required property bool isGenerating

        busy: isGenerating
        focusPolicy: Qt.NoFocus
        focusShown: list.activeFocus && ListView.isCurrentItem
        menuOpen: chatId === list.menuChatId
        objectName: "chatRow"
        selected: chatId === list.activeChatId
        text: name
        width: list.width - Theme.gap2 * 2
        x: Theme.gap2

        // The list has the keyboard, not a row, which a search or a deletion may take away.
        onFocusChanged: if (focus) focus = false
        onClicked: {
            list.currentIndex = index
            list.chosen(chatId)
        }
        onMenuRequested: (item, x, y) => {
            list.currentIndex = index
            list.menuRequested(chatId, name, isFavorite, item, x, y)
        }
    }
    // The list gives a used label to another section through its context alone: a required property would keep the
    // former name.
    section.delegate: Label {
        color: Theme.t3
        font.pixelSize: Theme.fontSmall
        font.weight: Font.DemiBold
        height: Theme.px(40)
        leftPadding: Theme.gap4
        objectName: "sectionHeading"
        bottomPadding: Theme.gap1
        text: section === "true" ? "Избранное" : "Чаты"
        verticalAlignment: Text.AlignBottom
    }
    // qmllint enable unqualified

    Keys.onPressed: event => {
        const shift = event.modifiers & Qt.ShiftModifier
        const plain = !(event.modifiers & (Qt.ControlModifier | Qt.AltModifier | Qt.MetaModifier))
        const page = Math.max(1, Math.floor(height / Theme.rowHeight) - 1)
        event.accepted = true
        switch (event.key) {
        case Qt.Key_Return:
        case Qt.Key_Enter:
        case Qt.Key_Space:
            return open(currentIndex)
        case Qt.Key_F2:
            return ask(currentIndex, renameRequested)
        case Qt.Key_Delete:
            return ask(currentIndex, deleteRequested)
        case Qt.Key_Home:
            return move(0)
        case Qt.Key_End:
            return move(rows - 1)
        case Qt.Key_PageUp:
            return move(currentIndex - page)
        case Qt.Key_PageDown:
            return move(currentIndex + page)
        case Qt.Key_Up:
            return currentIndex > 0 ? move(currentIndex - 1) : leftUpwards()
        case Qt.Key_Menu:
            return openMenu()
        case Qt.Key_F10:
            if (shift)
                return openMenu()
        }
        event.accepted = plain && event.text.length > 0 && event.text >= " " && event.key !== Qt.Key_Backspace
        if (event.accepted)
            typed(event.text)
    }

    onActiveChatIdChanged: showActive()
    onActiveFocusChanged: {
        if (activeFocus && currentIndex < 0 && rows > 0)
            currentIndex = Math.max(0, filter.rowOf(activeChatId))
    }

    ChatFilterModel {
        id: filter

        query: list.query
        source: list.chats

        onQueryChanged: query.length > 0 ? list.positionViewAtBeginning() : list.showActive()
    }
    // Ages change by the minute, for eyes that are there.
    Timer {
        interval: 60000
        repeat: true
        running: list.visible && list.rows > 0 && list.Window.visibility !== Window.Hidden
            && list.Window.visibility !== Window.Minimized
        triggeredOnStart: true

        onTriggered: filter.now = new Date()
    }
}
