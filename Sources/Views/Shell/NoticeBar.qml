import QtQuick

// Above every screen: something about the installation that the user should know.
Item {
    id: bar

    required property string text

    signal dismissed

    implicitHeight: strip.implicitHeight + Theme.gap2 * 2

    MessageStrip {
        id: strip

        dismissible: true
        objectName: "noticeBar"
        text: bar.text
        width: parent.width - Theme.gap2 * 2
        x: Theme.gap2
        y: Theme.gap2

        onDismissed: bar.dismissed()
    }
}
