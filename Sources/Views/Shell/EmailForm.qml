import QtQuick

FormPage {
    id: form

    property bool busy: false
    property string email
    property string error

    readonly property string address: field.text.trim()
    readonly property bool complete: /^[^\s@]+@[^\s@]+$/.test(address)

    signal submitted(address: string)

    function submit(): void {
        if (complete && !busy)
            submitted(address)
    }

    spacing: Theme.gap2

    FormHeading {
        text: "Войдите, чтобы продолжить"
        title: "Korvi AI"
        width: parent.width
    }
    InputField {
        id: field

        focus: true
        inputMethodHints: Qt.ImhEmailCharactersOnly | Qt.ImhNoAutoUppercase | Qt.ImhNoPredictiveText
        objectName: "emailField"
        placeholderText: "Электронная почта"
        readOnly: form.busy
        text: form.email
        width: parent.width

        onAccepted: form.submit()
    }
    FormError {
        text: form.error
    }
    PrimaryButton {
        busy: form.busy
        enabled: form.complete && !form.busy
        objectName: "requestCodeButton"
        text: "Получить код"
        width: parent.width

        onClicked: form.submit()
    }
    Label {
        bottomPadding: Theme.gap2
        color: Theme.t3
        horizontalAlignment: Text.AlignHCenter
        text: "или"
        topPadding: Theme.gap3
        width: parent.width
    }
    Grid {
        columnSpacing: Theme.gap2
        columns: 2
        rowSpacing: Theme.gap2
        width: parent.width

        Repeater {
            model: ["Google", "Яндекс", "VK", "Apple"]

            ProviderButton {
                required property string modelData

                provider: modelData
                width: (parent.width - Theme.gap2) / 2
            }
        }
    }
}
