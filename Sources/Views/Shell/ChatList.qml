import QtQuick
import QtQuick.Templates as T
import "RelativeTime.js" as RelativeTime

// All chats of the user, favourites first. One stop of the Tab key; arrows move inside, Return opens.
ListView {
    id: list

    required property var chats
    required property real activeChatId

    signal chosen(chatId: real)

    Accessible.name: "Список чатов"
    Accessible.role: Accessible.List
    T.ScrollBar.vertical: ThinScrollBar {}
    activeFocusOnTab: true
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    currentIndex: -1
    keyNavigationEnabled: true
    model: chats
    objectName: "chatList"
    section.criteria: ViewSection.FullString
    section.property: "isFavorite"

    // qmllint disable unqualified
    delegate: SidebarRow {
        required property real chatId
        required property string name
        required property string updatedAt
        required property int index

        detail: RelativeTime.describe(updatedAt, new Date())
        focusPolicy: Qt.NoFocus
        focusShown: list.activeFocus && ListView.isCurrentItem
        selected: chatId === list.activeChatId
        text: name
        width: list.width - Theme.gap2 * 2
        x: Theme.gap2

        onClicked: {
            list.currentIndex = index
            list.chosen(chatId)
        }
    }
    // qmllint enable unqualified
    section.delegate: Label {
        required property string section

        color: Theme.t3
        font.pixelSize: Theme.fontSmall
        font.weight: Font.DemiBold
        height: Theme.px(40)
        leftPadding: Theme.gap4
        bottomPadding: Theme.gap1
        text: section === "true" ? "Избранное" : "Чаты"
        verticalAlignment: Text.AlignBottom
    }

    onActiveFocusChanged: if (activeFocus && currentIndex < 0 && count > 0) currentIndex = 0

    Label {
        anchors.left: parent.left
        anchors.margins: Theme.gap4
        anchors.right: parent.right
        anchors.top: parent.top
        color: Theme.t3
        text: "Здесь появятся ваши чаты"
        visible: list.count === 0
        wrapMode: Text.Wrap
    }
}
