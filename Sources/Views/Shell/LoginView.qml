import QtQuick
import Korvi.ViewModels

// The way in: the address, then the code that was sent to it.
FocusScope {
    id: login

    required property AuthViewModel auth

    focus: true

    Loader {
        anchors.fill: parent
        focus: true
        sourceComponent: login.auth.isEnterCodeStep ? codeForm : emailForm

        onLoaded: item.forceActiveFocus()
    }
    Component {
        id: emailForm

        EmailForm {
            busy: login.auth.isLoading
            email: login.auth.email
            error: login.auth.errorMessage

            onSubmitted: address => login.auth.requestEmailCode(address)
        }
    }
    Component {
        id: codeForm

        CodeForm {
            busy: login.auth.isLoading
            email: login.auth.email
            error: login.auth.errorMessage
            secondsLeft: login.auth.countdown.secondsLeft

            onChangeEmail: login.auth.changeEmail()
            onResend: login.auth.resendCode()
            onSubmitted: code => login.auth.validateCode(code)
        }
    }
}
