import QtQuick

// Who is signed in.
Item {
    id: card

    required property string displayName
    required property string email // empty without one
    required property string initials

    implicitHeight: avatar.height + Theme.gap4 * 2
    width: parent ? parent.width : 0

    Rectangle {
        id: avatar

        Accessible.ignored: true
        color: Theme.accbg
        height: width
        radius: width / 2
        width: Theme.px(48)
        x: Theme.gap4
        y: Theme.gap4

        Label {
            anchors.centerIn: parent
            color: Theme.acc
            font.pixelSize: Theme.fontHeading1
            font.weight: Font.DemiBold
            text: card.initials
        }
    }
    Column {
        anchors.left: avatar.right
        anchors.leftMargin: Theme.gap3
        anchors.right: parent.right
        anchors.rightMargin: Theme.gap4
        anchors.verticalCenter: avatar.verticalCenter

        Label {
            elide: Text.ElideRight
            font.pixelSize: Theme.fontHeading2
            font.weight: Font.DemiBold
            objectName: "profileName"
            text: card.displayName
            width: parent.width
        }
        Label {
            color: Theme.t2
            elide: Text.ElideMiddle
            objectName: "profileEmail"
            text: card.email
            visible: text.length > 0 && text !== card.displayName
            width: parent.width
        }
    }
}
