import QtQuick
import Korvi.ViewModels

Column {
    id: section

    required property AuthViewModel auth
    required property CacheManager caches
    required property Onboarding onboarding

    readonly property string signedOut: auth.isAuthenticated ? "" : "Сначала войдите в аккаунт"

    spacing: Theme.gap5

    Component.onCompleted: caches.refreshSizes()

    SettingsGroup {
        title: "Обучение"
        width: parent.width

        SettingsAction {
            objectName: "appGuideButton"
            symbol: "graduationcap"
            text: "Пройти обучение по приложению"
            unavailable: section.signedOut

            onTriggered: section.onboarding.replay("app")
        }
        SettingsAction {
            objectName: "agentGuideButton"
            separated: true
            symbol: "terminal"
            text: "Пройти обучение по агенту"
            unavailable: section.signedOut

            onTriggered: section.onboarding.replay("agent")
        }
    }
    SettingsGroup {
        title: "Кеш"
        width: parent.width

        SettingsRow {
            symbol: "internaldrive"
            title: "Размер"

            Label {
                color: Theme.t2
                objectName: "cacheSize"
                text: section.caches.totalText
            }
        }
        SettingsAction {
            objectName: "clearCacheButton"
            separated: true
            symbol: "trash"
            text: "Очистить кеш"
            trailing: ""

            onTriggered: question.open({
                acceptText: "Очистить",
                destructive: true,
                message: "Кешированные данные и изображения будут удалены.",
                title: "Очистить кеш?"
            })
        }
    }
    OnDemand {
        id: question

        source: "ConfirmDialog.qml"
    }
    Connections {
        function onAccepted() {
            section.caches.clearAll()
        }

        ignoreUnknownSignals: true
        target: question.item
    }
}
