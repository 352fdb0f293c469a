import QtQuick

// The mark, a title and a line below it.
Column {
    id: heading

    required property string title
    required property string text

    bottomPadding: Theme.gap6

    BrandMark {
        anchors.horizontalCenter: parent.horizontalCenter
    }
    Item {
        height: Theme.gap4
        width: 1
    }
    Label {
        Accessible.role: Accessible.Heading
        font.pixelSize: Theme.fontTitle
        font.weight: Font.DemiBold
        horizontalAlignment: Text.AlignHCenter
        text: heading.title
        width: parent.width
        wrapMode: Text.Wrap
    }
    Item {
        height: Theme.gap1
        width: 1
    }
    Label {
        color: Theme.t2
        elide: Text.ElideMiddle
        horizontalAlignment: Text.AlignHCenter
        maximumLineCount: 3
        text: heading.text
        width: parent.width
        wrapMode: Text.Wrap
    }
}
