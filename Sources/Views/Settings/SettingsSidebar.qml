import QtQuick

// The sections, in order. Up and down choose at once.
FocusScope {
    id: sidebar

    required property var sections // [{ name, title, symbol }]
    property bool narrow: false
    property alias currentIndex: list.currentIndex

    Accessible.name: "Разделы настроек"
    Accessible.role: Accessible.Pane

    Rectangle {
        anchors.fill: parent
        color: Theme.side
    }
    Rectangle {
        anchors.right: parent.right
        color: Theme.line
        height: parent.height
        width: Theme.hairline
    }
    ListView {
        id: list

        anchors.fill: parent
        anchors.margins: Theme.gap2
        anchors.topMargin: Theme.gap4
        boundsBehavior: Flickable.StopAtBounds
        currentIndex: 0
        focus: true
        interactive: contentHeight > height
        keyNavigationEnabled: true
        keyNavigationWraps: true
        model: sidebar.sections
        spacing: Theme.gap1 / 2

        // qmllint disable unqualified
        delegate: SidebarRow {
            id: row

            required property int index
            required property var modelData

            Accessible.role: Accessible.PageTab
            Accessible.selected: selected
            bare: sidebar.narrow
            focusPolicy: index === list.currentIndex ? Qt.TabFocus : Qt.NoFocus
            focusShown: activeFocus && list.keyed
            hint: sidebar.narrow ? text : ""
            objectName: modelData.name + "Section"
            selected: index === list.currentIndex
            symbol: modelData.symbol
            text: modelData.title
            width: ListView.view.width

            onClicked: {
                list.currentIndex = index
                list.forceActiveFocus()
            }
        }
        // qmllint enable unqualified

        readonly property bool keyed: activeFocus
    }
}
