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

        onLoaded: (item as FormPage).forceActiveFocus()
    }
    Component {
        id: emailForm

        // qmllint disable unqualified
        EmailForm {
            busy: login.auth.isLoading
            configuredProviders: login.auth.configuredProviders
            email: login.auth.email
            error: login.auth.errorMessage
            providers: login.auth.providers
            waitingProvider: login.auth.waitingProvider

            onProviderCancelled: login.auth.cancelSignIn()
            onProviderChosen: provider => login.auth.signInWith(provider)
            onSubmitted: address => login.auth.requestEmailCode(address)
        }
        // qmllint enable unqualified
    }
    Component {
        id: codeForm

        // qmllint disable unqualified
        CodeForm {
            busy: login.auth.isLoading
            email: login.auth.email
            error: login.auth.errorMessage
            secondsLeft: login.auth.countdown.secondsLeft

            onChangeEmail: login.auth.changeEmail()
            onResend: login.auth.resendCode()
            onSubmitted: code => login.auth.validateCode(code)
        }
        // qmllint enable unqualified
    }
}
