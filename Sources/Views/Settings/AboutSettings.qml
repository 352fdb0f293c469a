import QtQuick
import Korvi.ViewModels

Column {
    id: section

    required property AboutViewModel about

    readonly property string notConfigured: "Адрес не указан в этой сборке"

    spacing: Theme.gap5

    Column {
        bottomPadding: Theme.gap2
        spacing: Theme.gap2
        topPadding: Theme.gap2
        width: parent.width

        BrandMark {
            anchors.horizontalCenter: parent.horizontalCenter
        }
        Label {
            anchors.horizontalCenter: parent.horizontalCenter
            font.pixelSize: Theme.fontHeading1
            font.weight: Font.DemiBold
            text: "Korvi AI"
            topPadding: Theme.gap2
        }
    }
    SettingsGroup {
        width: parent.width

        SettingsRow {
            symbol: "info.circle"
            title: "Версия"

            Label {
                color: Theme.t2
                objectName: "version"
                text: section.about.version
            }
        }
        SettingsAction {
            objectName: "checkForUpdatesButton"
            separated: true
            symbol: "arrow.clockwise"
            text: "Проверить обновления…"
            unavailable: "Эта сборка обновляется вместе с системой"
        }
    }
    SettingsGroup {
        width: parent.width

        SettingsAction {
            objectName: "privacyPolicyLink"
            symbol: "hand.raised"
            text: "Политика конфиденциальности"
            trailing: "arrow.up.right.square"
            unavailable: section.about.hasPrivacyPolicy ? "" : section.notConfigured

            onTriggered: Qt.openUrlExternally(section.about.privacyPolicyUrl)
        }
        SettingsAction {
            objectName: "termsOfUseLink"
            separated: true
            symbol: "doc.text"
            text: "Условия использования"
            trailing: "arrow.up.right.square"
            unavailable: section.about.hasTermsOfUse ? "" : section.notConfigured

            onTriggered: Qt.openUrlExternally(section.about.termsOfUseUrl)
        }
    }
}
