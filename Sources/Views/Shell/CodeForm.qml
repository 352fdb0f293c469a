import QtQuick

FormPage {
    id: form

    property bool busy: false
    property string email
    property string error
    property int secondsLeft: 0

    signal submitted(code: string)
    signal resend
    signal changeEmail

    spacing: Theme.gap2

    Keys.onEscapePressed: event => {
        event.accepted = !busy
        if (event.accepted)
            changeEmail()
    }

    // A refused code leaves an empty field that is ready for the next one.
    onBusyChanged: {
        if (!busy && field.complete)
            field.reset()
    }

    FormHeading {
        text: "Отправили его на %1".arg(form.email)
        title: "Введите код"
        width: parent.width
    }
    CodeField {
        id: field

        anchors.horizontalCenter: parent.horizontalCenter
        busy: form.busy
        failed: form.error.length > 0
        focus: true

        onCompleted: code => form.submitted(code)
    }
    // Its place is kept, so that nothing moves when it comes.
    FormError {
        Accessible.ignored: text.length === 0
        height: Math.max(implicitHeight, Theme.leading(font.pixelSize) + topPadding)
        text: form.error
        topPadding: Theme.gap1
        visible: true
    }
    Item {
        height: Theme.px(28)
        width: parent.width

        Spinner {
            anchors.centerIn: parent
            running: form.busy
        }
        Label {
            anchors.centerIn: parent
            color: Theme.t2
            text: "Отправить ещё раз через %1 с".arg(form.secondsLeft)
            visible: !form.busy && form.secondsLeft > 0
        }
        LinkButton {
            anchors.centerIn: parent
            objectName: "resendButton"
            text: "Отправить код ещё раз"
            visible: !form.busy && form.secondsLeft <= 0

            onClicked: {
                field.reset()
                form.resend()
            }
        }
    }
    LinkButton {
        anchors.horizontalCenter: parent.horizontalCenter
        color: Theme.t2
        enabled: !form.busy
        objectName: "changeEmailButton"
        text: "Изменить адрес"

        onClicked: form.changeEmail()
    }
}
