import QtQuick
import Korvi.ViewModels

Column {
    id: section

    required property AuthViewModel auth

    readonly property string deletionError: auth.deleteAccountError

    spacing: Theme.gap5

    Component.onCompleted: showDeletionError()
    onDeletionErrorChanged: showDeletionError()

    function showDeletionError(): void {
        if (deletionError.length > 0)
            failure.open({
                acceptText: "Понятно",
                message: deletionError,
                rejectText: "",
                title: auth.deleteAccountErrorTitle
            })
    }

    Label {
        color: Theme.t2
        text: "Войдите, чтобы увидеть свой профиль."
        visible: !section.auth.isAuthenticated
        width: parent.width
        wrapMode: Text.Wrap
    }
    SettingsGroup {
        title: "Профиль"
        visible: section.auth.isAuthenticated
        width: parent.width

        ProfileCard {
            displayName: section.auth.displayName
            email: section.auth.userEmail
            initials: section.auth.initials
        }
        SettingsAction {
            objectName: "signOutButton"
            separated: true
            symbol: "rectangle.portrait.and.arrow.right"
            text: "Выйти из аккаунта"
            trailing: ""

            onTriggered: signOut.open({
                acceptText: "Выйти",
                message: "Вы уверены, что хотите выйти?",
                title: "Выйти из аккаунта?"
            })
        }
    }
    SettingsGroup {
        visible: section.auth.isAuthenticated
        width: parent.width

        SettingsAction {
            destructive: true
            objectName: "deleteAccountButton"
            symbol: "trash"
            text: section.auth.isDeletingAccount ? "Удаляем аккаунт…" : "Удалить аккаунт"
            trailing: ""
            unavailable: section.auth.isDeletingAccount ? "Аккаунт удаляется" : ""

            onTriggered: deletion.open({
                acceptText: "Удалить",
                destructive: true,
                message: "Аккаунт и все данные в нём будут удалены. Вернуть их нельзя.",
                title: "Удалить аккаунт?"
            })
        }
    }
    OnDemand {
        id: signOut

        source: "ConfirmDialog.qml"
    }
    Connections {
        function onAccepted() {
            section.auth.logout()
        }

        ignoreUnknownSignals: true
        target: signOut.item
    }
    OnDemand {
        id: deletion

        source: "ConfirmDialog.qml"
    }
    Connections {
        function onAccepted() {
            section.auth.performDeleteAccount()
        }

        ignoreUnknownSignals: true
        target: deletion.item
    }
    OnDemand {
        id: failure

        source: "ConfirmDialog.qml"
    }
    Connections {
        function onClosed() {
            section.auth.dismissDeleteAccountError()
        }

        ignoreUnknownSignals: true
        target: failure.item
    }
}
