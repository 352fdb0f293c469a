import QtQuick
import Korvi.ViewModels
import Korvi.Views // the types written in C++

FormPage {
    id: view

    required property AuthViewModel auth

    signal retry

    focus: true

    Rectangle {
        Accessible.ignored: true
        anchors.horizontalCenter: parent.horizontalCenter
        color: Theme.sunk
        height: width
        radius: width / 2
        width: Theme.px(56)

        Symbol {
            anchors.centerIn: parent
            color: Theme.t2
            name: "wifi.slash"
            size: Theme.px(24)
        }
    }
    Label {
        Accessible.role: Accessible.Heading
        font.pixelSize: Theme.fontHeading1
        font.weight: Font.DemiBold
        horizontalAlignment: Text.AlignHCenter
        text: "Нет подключения к интернету"
        topPadding: Theme.gap4
        width: parent.width
        wrapMode: Text.Wrap
    }
    Label {
        bottomPadding: Theme.gap5
        color: Theme.t2
        horizontalAlignment: Text.AlignHCenter
        text: "Проверьте подключение и попробуйте снова"
        topPadding: Theme.gap1
        width: parent.width
        wrapMode: Text.Wrap
    }
    PrimaryButton {
        anchors.horizontalCenter: parent.horizontalCenter
        busy: view.auth.isLoading
        focus: true
        objectName: "retryConnectionButton"
        text: "Повторить"
        width: Theme.px(160)

        onClicked: view.retry()
    }
}
