import QtQuick

FormPage {
    id: form

    property bool busy: false
    property string email
    property string error
    property var providers: [] // names of all, and of those that can be used
    property var configuredProviders: []
    property string waitingProvider // whose page is open in the browser

    readonly property string address: field.text.trim()
    readonly property bool complete: /^[^\s@]+@[^\s@]+$/.test(address)

    signal submitted(address: string)
    signal providerChosen(provider: string)
    signal providerCancelled

    function submit(): void {
        if (complete && !busy)
            submitted(address)
    }

    spacing: Theme.gap2

    Keys.onEscapePressed: event => {
        event.accepted = waitingProvider.length > 0
        if (event.accepted)
            providerCancelled()
    }

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
        Accessible.role: form.waitingProvider.length > 0 ? Accessible.AlertMessage : Accessible.StaticText
        bottomPadding: Theme.gap2
        color: Theme.t3
        horizontalAlignment: Text.AlignHCenter
        objectName: "waitingLabel"
        text: form.waitingProvider.length > 0 ? "Закончите вход через %1 в браузере".arg(form.waitingProvider) : "или"
        topPadding: Theme.gap3
        width: parent.width
    }
    Grid {
        columnSpacing: Theme.gap2
        columns: 2
        rowSpacing: Theme.gap2
        width: parent.width

        Repeater {
            model: form.providers

            // qmllint disable unqualified
            ProviderButton {
                required property string modelData

                configured: form.configuredProviders.includes(modelData)
                enabled: !form.busy
                provider: modelData
                waiting: form.waitingProvider === modelData
                width: (parent.width - Theme.gap2) / 2

                onCancelled: form.providerCancelled()
                onChosen: form.providerChosen(modelData)
            }
            // qmllint enable unqualified
        }
    }
}
