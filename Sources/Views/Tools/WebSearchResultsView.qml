import QtQuick
import Korvi.Views // the types written in C++
import "Russian.js" as Russian
import "SearchTab.js" as SearchTab

// What a web search has found: one line, and under it, when asked for, the answer, the sources and the pictures. What is
// folded or on another tab does not exist.
CardPart {
    id: view

    required property string query // may be empty
    required property real responseTime // seconds; 0 when it is not known
    required property var answer // texts
    required property var results // { title, url, content, favicon, domain }
    required property var images // { url, description }
    property bool unfolded: false
    property string tab // of SearchTab.js; empty: the first one

    readonly property var tabs: SearchTab.tabsOf(answer.length, results.length, images.length)
    readonly property string currentTab: tabs.includes(tab) ? tab : tabs[0] ?? ""
    readonly property string summary: {
        const facts = []
        if (query.length > 0)
            facts.push("«" + query + "»")
        if (results.length > 0)
            facts.push(Russian.counted(results.length, "источник", "источника", "источников"))
        if (responseTime > 0)
            facts.push(Russian.seconds(responseTime))
        return facts.map(fact => " · " + fact).join("")
    }

    signal linkOpened(string url)
    signal imageOpened(int index)
    signal unfoldedToggled // for those who want to know it when the card is made again
    signal tabChosen(string tab)

    function chooseTab(chosen: string): void {
        tab = chosen
        tabChosen(chosen)
    }

    Accessible.name: header.text + summary
    Accessible.role: Accessible.Grouping
    implicitHeight: card.height

    Rectangle {
        id: card

        border.color: Theme.line
        color: "transparent"
        height: header.height + (body.active ? body.height + Theme.gap4 : 0)
        radius: Theme.radiusCard
        width: view.width

        BaseButton {
            id: header

            Accessible.checkable: true
            Accessible.checked: view.unfolded
            Accessible.description: view.summary
            enabled: view.tabs.length > 0
            focus: true
            horizontalPadding: Theme.gap3 + Theme.gap1 / 2
            implicitHeight: Theme.px(42)
            objectName: "searchHeader"
            radius: card.radius
            text: view.query.length > 0 || view.responseTime > 0 ? "Поиск в интернете" : "Источники"
            width: parent.width

            background: Rectangle {
                color: header.enabled && (header.down || header.hovered) ? Theme.hover : "transparent"
                radius: header.radius
            }
            contentItem: Item {
                Symbol {
                    id: globe

                    anchors.verticalCenter: parent.verticalCenter
                    color: Theme.t2
                    name: "globe"
                    size: Theme.icon
                }
                Label {
                    id: title

                    anchors.left: globe.right
                    anchors.leftMargin: Theme.gap2 + Theme.gap1 / 2
                    anchors.verticalCenter: parent.verticalCenter
                    font.weight: Font.DemiBold
                    text: header.text
                }
                Label {
                    anchors.left: title.right
                    anchors.right: icons.left
                    anchors.rightMargin: Theme.gap2
                    anchors.verticalCenter: parent.verticalCenter
                    color: Theme.t2
                    elide: Text.ElideRight
                    text: view.summary
                }
                // Whose pages they are, at a glance.
                Row {
                    id: icons

                    anchors.right: chevron.left
                    anchors.rightMargin: Theme.gap2
                    anchors.verticalCenter: parent.verticalCenter
                    spacing: Theme.gap1
                    visible: header.width >= Theme.px(440)
                    width: visible ? implicitWidth : 0

                    Repeater {
                        model: view.unfolded ? [] : [...new Set(view.results.map(result => result.favicon))].filter(
                            favicon => favicon.length > 0).slice(0, 4)

                        // qmllint disable unqualified
                        delegate: Favicon {
                            required property string modelData

                            source: modelData
                        }
                        // qmllint enable unqualified
                    }
                }
                Symbol {
                    id: chevron

                    anchors.right: parent.right
                    anchors.verticalCenter: parent.verticalCenter
                    color: Theme.t3
                    name: "chevron.right"
                    rotation: view.unfolded ? 90 : 0
                    size: Theme.px(14)
                    visible: header.enabled

                    Behavior on rotation { NumberAnimation { duration: Theme.quick } }
                }
            }

            onClicked: {
                view.unfolded = !view.unfolded
                view.unfoldedToggled()
            }
        }
        Loader {
            id: body

            active: view.unfolded && view.tabs.length > 0
            visible: active
            width: parent.width - Theme.gap4 * 2
            x: Theme.gap4
            y: header.height

            // qmllint disable unqualified
            sourceComponent: Column {
                spacing: Theme.gap3

                SearchTabBar {
                    counts: ({ sources: view.results.length, images: view.images.length })
                    current: view.currentTab
                    tabs: view.tabs
                    visible: view.tabs.length > 1
                    x: -Theme.gap2

                    onChosen: tab => view.chooseTab(tab)
                }
                Loader {
                    objectName: "tabContent"
                    sourceComponent: view.currentTab === SearchTab.answer ? overview
                        : view.currentTab === SearchTab.sources ? sources : pictures
                    width: parent.width
                }
            }
            // qmllint enable unqualified
        }
    }
    Component {
        id: overview

        // qmllint disable unqualified
        SearchOverview {
            answer: view.answer
            images: view.images
            results: view.results

            onCopyWanted: text => view.copyWanted(text)
            onImageOpened: index => view.imageOpened(index)
            onLinkOpened: url => view.linkOpened(url)
            onTabWanted: tab => view.chooseTab(tab)
        }
        // qmllint enable unqualified
    }
    Component {
        id: sources

        // qmllint disable unqualified
        SearchSources {
            results: view.results

            onLinkOpened: url => view.linkOpened(url)
        }
        // qmllint enable unqualified
    }
    Component {
        id: pictures

        // qmllint disable unqualified
        SearchPictures {
            images: view.images

            onImageOpened: index => view.imageOpened(index)
        }
        // qmllint enable unqualified
    }
}
