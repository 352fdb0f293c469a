import QtQuick
import QtQuick.Templates as T
import "Shortcuts.js" as Shortcuts

// What the keys do.
Sheet {
    id: sheet

    firstFocus: scroller
    title: "Сочетания клавиш"

    contentItem: Flickable {
        id: scroller

        T.ScrollBar.vertical: ThinScrollBar {}
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        contentHeight: column.height
        implicitHeight: column.height

        Keys.onDownPressed: contentY = Math.max(0, Math.min(contentHeight - height, contentY + Theme.rowHeight))
        Keys.onUpPressed: contentY = Math.max(0, contentY - Theme.rowHeight)

        Column {
            id: column

            width: scroller.width - (scroller.contentHeight > scroller.height ? Theme.gap4 : 0)

            Label {
                Accessible.role: Accessible.Heading
                bottomPadding: Theme.gap2
                font.pixelSize: Theme.fontHeading2
                font.weight: Font.DemiBold
                text: sheet.title
            }
            Repeater {
                model: Shortcuts.groups

                // qmllint disable unqualified
                Column {
                    id: group

                    required property var modelData

                    width: column.width

                    Label {
                        color: Theme.t3
                        font.pixelSize: Theme.fontSmall
                        font.weight: Font.DemiBold
                        height: Theme.rowHeight
                        text: group.modelData.title
                        verticalAlignment: Text.AlignBottom
                        bottomPadding: Theme.gap1
                    }
                    Repeater {
                        model: group.modelData.rows

                        Item {
                            id: row

                            required property var modelData

                            height: Theme.rowHeight
                            width: group.width

                            Label {
                                anchors.left: parent.left
                                anchors.right: caps.left
                                anchors.rightMargin: Theme.gap2
                                anchors.verticalCenter: parent.verticalCenter
                                elide: Text.ElideRight
                                text: row.modelData.text
                            }
                            KeyCaps {
                                id: caps

                                anchors.right: parent.right
                                anchors.verticalCenter: parent.verticalCenter
                                keys: row.modelData.keys[0]
                            }
                        }
                    }
                }
                // qmllint enable unqualified
            }
        }
    }
}
