import QtQuick

// Above a document: what it is, how it is looked at, what can be done with it.
FocusScope {
    id: header

    required property string title
    required property string details
    required property bool generating
    required property bool busy // a PDF is being made
    required property bool tabsShown
    required property string tab

    readonly property bool isNarrow: width < Theme.px(480)

    signal tabChosen(string tab)
    signal copyWanted
    signal saveWanted
    signal pdfWanted
    signal closed

    implicitHeight: bar.height + (tabsShown && isNarrow ? Theme.px(36) : 0)

    Item {
        id: bar

        height: Theme.headerHeight
        width: parent.width

        Column {
            anchors.left: parent.left
            anchors.leftMargin: Theme.gap4
            anchors.right: buttons.left
            anchors.rightMargin: Theme.gap3 + (tabs.visible && !header.isNarrow ? tabs.width + Theme.gap2 : 0)
            anchors.verticalCenter: parent.verticalCenter

            Label {
                Accessible.role: Accessible.Heading
                elide: Text.ElideRight
                font.weight: Font.DemiBold
                objectName: "artifactTitle"
                text: header.title
                width: parent.width
            }
            Label {
                color: Theme.t3
                elide: Text.ElideRight
                font.pixelSize: Theme.fontSmall
                lineHeight: Theme.px(14)
                objectName: "artifactHeaderDetails"
                text: header.details
                width: parent.width
            }
        }
        Row {
            id: buttons

            anchors.right: parent.right
            anchors.rightMargin: Theme.gap2
            anchors.verticalCenter: parent.verticalCenter

            CopyButton {
                focus: true
                implicitHeight: Theme.rowHeight
                implicitWidth: Theme.rowHeight
                objectName: "copyArtifact"
                symbolSize: Theme.icon

                onClicked: header.copyWanted()
            }
            IconButton {
                enabled: !header.generating
                objectName: "saveArtifact"
                symbol: "arrow.down.to.line"
                text: "Сохранить как…"

                onClicked: header.saveWanted()
            }
            Item {
                height: Theme.rowHeight
                width: Theme.px(44)

                LinkButton {
                    anchors.centerIn: parent
                    color: Theme.t2
                    enabled: !header.generating && !header.busy
                    hint: "Сохранить как PDF"
                    objectName: "pdfButton"
                    text: header.busy ? "" : "PDF"

                    onClicked: header.pdfWanted()
                }
                Spinner {
                    anchors.centerIn: parent
                    running: header.busy
                }
            }
            IconButton {
                objectName: "closeArtifact"
                symbol: "xmark"
                text: "Закрыть"

                onClicked: header.closed()
            }
        }
    }
    TwoTabs {
        id: tabs

        current: header.tab
        visible: header.tabsShown
        x: header.isNarrow ? Theme.gap4 : header.width - buttons.width - Theme.gap4 - width
        y: header.isNarrow ? bar.height : Math.round((bar.height - height) / 2)

        onChosen: tab => header.tabChosen(tab)
    }
    Rectangle {
        anchors.bottom: parent.bottom
        color: Theme.line
        height: Theme.hairline
        width: parent.width
    }
}
