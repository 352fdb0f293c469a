import QtQuick
import QtQuick.Templates as T

// The models to choose from, by provider. Arrows, Home and End move, Return chooses, Esc closes.
T.Popup {
    id: picker

    required property var models // roles modelId, name, description, iconName, provider, isSelected; in group order
    readonly property real below: parent ? parent.height + Theme.gap1 : 0 // the button that it belongs to
    readonly property real room: parent ? parent.Window.height - parent.mapToItem(null, 0, below).y - Theme.gap2 : 0

    property int selectedRow: 0

    signal chosen(modelId: string)

    function choose(row: Item): void {
        if (row)
            chosen(row.modelId) // qmllint disable
    }

    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent // the button that opened it closes it
    focus: true
    height: Math.min(implicitHeight, room)
    implicitHeight: list.contentHeight + topPadding + bottomPadding
    implicitWidth: Theme.px(Theme.pickerWidth)
    margins: Theme.gap2
    objectName: "modelPicker"
    padding: Theme.gap1
    width: Math.min(implicitWidth, parent ? parent.Window.width - Theme.gap2 * 2 : implicitWidth)
    y: below

    onAboutToShow: {
        list.currentIndex = selectedRow
        list.positionViewAtIndex(selectedRow, ListView.Contain)
    }

    FocusReturn {
        popup: picker
    }
    // Rows of the list exist only where they are seen.
    Instantiator {
        model: picker.models

        // qmllint disable unqualified
        delegate: QtObject {
            required property bool isSelected
            required property int index

            Component.onCompleted: if (isSelected) picker.selectedRow = index
        }
        // qmllint enable unqualified
    }

    background: Rectangle {
        border.color: Theme.line2
        color: Theme.raise
        radius: Theme.radiusCard

        SoftShadow {
            around: Theme.radiusCard
            z: -1
        }
    }
    contentItem: ListView {
        id: list

        Accessible.name: "Модели"
        Accessible.role: Accessible.List
        T.ScrollBar.vertical: ThinScrollBar {}
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        focus: true
        highlightMoveDuration: 0
        highlightMoveVelocity: -1
        keyNavigationEnabled: true
        model: picker.models
        section.property: "provider"

        // qmllint disable unqualified
        delegate: BaseButton {
            id: row

            required property string modelId
            required property string name
            required property string description
            required property string iconName
            required property bool isSelected
            required property int index

            Accessible.description: description
            Accessible.role: Accessible.ListItem
            Accessible.selected: isSelected
            focusPolicy: Qt.NoFocus
            horizontalPadding: Theme.gap2
            implicitHeight: Math.max(Theme.tallRowHeight, implicitContentHeight + Theme.gap2 * 2)
            objectName: "model." + modelId
            text: name
            width: list.width - (list.contentHeight > list.height ? Theme.gap2 : 0) // the bar stands beside the rows

            background: Rectangle {
                color: row.ListView.isCurrentItem ? Theme.pick : "transparent"
                radius: row.radius
            }
            contentItem: TitledRow {
                checked: row.isSelected
                lit: row.ListView.isCurrentItem
                subtitle: row.description
                symbol: row.iconName
                title: row.name
            }

            onClicked: picker.choose(row)
        }
        // As in every list: a required property would keep the name of a former section.
        section.delegate: Label {
            Accessible.role: Accessible.Heading
            bottomPadding: Theme.gap1
            color: Theme.t3
            font.pixelSize: Theme.fontSmall
            font.weight: Font.DemiBold
            height: Theme.rowHeight
            leftPadding: Theme.gap2
            text: section
            verticalAlignment: Text.AlignBottom
        }
        // qmllint enable unqualified

        PointerChoice {
            list: list
        }

        Keys.onEnterPressed: picker.choose(currentItem)
        Keys.onPressed: event => {
            const ends = { [Qt.Key_Home]: 0, [Qt.Key_End]: count - 1 }
            event.accepted = event.key in ends
            if (event.accepted)
                currentIndex = ends[event.key]
        }
        Keys.onReturnPressed: picker.choose(currentItem)
        Keys.onSpacePressed: picker.choose(currentItem)
    }
    enter: Transition {
        NumberAnimation { duration: Theme.quick; from: 0; property: "opacity"; to: 1 }
    }
}
