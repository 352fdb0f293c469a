import QtQuick
import QtQuick.Window
import Korvi.ViewModels

// The settings: sections on the left, the chosen one beside them. In a narrow window the sections are symbols only.
Window {
    id: window

    required property AboutViewModel about
    required property AuthViewModel auth
    required property CacheManager caches
    required property Onboarding onboarding
    required property ThemeManager theme

    readonly property var sections: [
        { name: "general", title: "Основные", symbol: "gear", source: "GeneralSettings.qml",
            properties: { auth: auth, caches: caches, onboarding: onboarding } },
        { name: "appearance", title: "Внешний вид", symbol: "paintbrush", source: "AppearanceSettings.qml",
            properties: { theme: theme } },
        { name: "account", title: "Аккаунт", symbol: "person.crop.circle", source: "AccountSettings.qml",
            properties: { auth: auth } },
        { name: "about", title: "О приложении", symbol: "info.circle", source: "AboutSettings.qml",
            properties: { about: about } },
    ]
    readonly property bool narrow: width < Theme.px(Theme.settingsFoldWidth)

    function showSection(): void {
        const section = sections[sidebar.currentIndex]
        page.setSource(section.source, section.properties)
    }

    color: Theme.bg
    flags: Qt.Dialog
    height: Math.min(Theme.px(560), Screen.desktopAvailableHeight - Theme.gap8)
    minimumHeight: 360
    minimumWidth: 420
    title: "Настройки"
    visible: true
    width: Math.min(Theme.px(760), Screen.desktopAvailableWidth - Theme.gap8)

    Component.onCompleted: {
        showSection()
        sidebar.forceActiveFocus(Qt.TabFocusReason)
    }

    Shortcut {
        sequences: ["Escape", "Ctrl+W"]

        onActivated: window.close()
    }
    SettingsSidebar {
        id: sidebar

        height: parent.height
        narrow: window.narrow
        sections: window.sections
        width: window.narrow ? Theme.px(56) : Theme.px(208)

        onCurrentIndexChanged: window.showSection()
    }
    ScrollPane {
        id: scroller

        anchors.bottom: parent.bottom
        anchors.left: sidebar.right
        anchors.right: parent.right
        anchors.top: parent.top
        contentHeight: column.height

        // What gets the keyboard is brought into sight.
        function reveal(item: Item): void {
            for (let above = item; above; above = above.parent) {
                if (above === column) {
                    const y = item.mapToItem(column, 0, 0).y
                    contentY = Math.max(0, Math.min(Math.max(contentY, y + item.height + Theme.gap4 - height),
                        y - Theme.gap4))
                    return
                }
            }
        }

        Column {
            id: column

            padding: window.narrow ? Theme.gap4 : Theme.gap6
            spacing: Theme.gap5
            width: scroller.width

            Label {
                Accessible.role: Accessible.Heading
                font.pixelSize: Theme.fontHeading1
                font.weight: Font.DemiBold
                text: window.sections[sidebar.currentIndex].title
            }
            Loader {
                id: page

                width: parent.width - parent.padding * 2

                onLoaded: scroller.contentY = 0
            }
        }
    }

    onActiveFocusItemChanged: {
        if (activeFocusItem)
            scroller.reveal(activeFocusItem)
    }
}
