import QtQuick
import Korvi.Views // the types written in C++
import "OnboardingSteps.js" as Guides

// A first-run guide: a drawing and some words for each step. Return goes on, the arrow keys go both ways, Esc skips.
Sheet {
    id: guide

    required property string kind // "app" or "agent"
    property int stepIndex: 0

    readonly property var steps: Guides.steps[kind]
    readonly property var step: steps[stepIndex]
    readonly property color accent: Theme[step.accent]
    readonly property bool isLast: stepIndex === steps.length - 1
    readonly property bool wide: width >= Theme.px(Theme.guideFoldWidth)
    readonly property real drawingWidth: wide ? Math.round(width * 0.45) : width
    readonly property real drawingHeight: wide ? height : Math.round(Math.min(Theme.px(180), height * 0.32))

    signal complete
    signal primaryAction

    function go(change: int): void {
        words.contentY = 0
        stepIndex = Math.max(0, Math.min(steps.length - 1, stepIndex + change))
    }

    function advance(): void {
        if (!isLast) {
            go(1)
            return
        }
        if (kind === "app")
            primaryAction()
        complete()
    }

    firstFocus: mainButton
    implicitHeight: Theme.px(wide ? 500 : 640)
    naturalWidth: Theme.px(Theme.guideWidth)
    padding: 0
    title: step.title

    onRejected: complete()

    contentItem: Item {
        Keys.onDownPressed: words.scroll(1)
        Keys.onLeftPressed: guide.go(-1)
        Keys.onRightPressed: guide.go(1)
        Keys.onUpPressed: words.scroll(-1)

        // Rounded where the sheet is, straight where it meets the words.
        Rectangle {
            Accessible.ignored: true
            color: Qt.tint(Theme.sunk, Qt.alpha(guide.accent, 0.08))
            height: guide.drawingHeight
            radius: Theme.radiusComposer
            width: guide.drawingWidth

            Rectangle {
                anchors.bottom: parent.bottom
                anchors.right: parent.right
                color: parent.color
                height: guide.wide ? parent.height : parent.radius
                width: guide.wide ? parent.radius : parent.width
            }
            Loader {
                id: drawing

                readonly property url wanted: Guides.drawings[guide.step.visual]

                function show(): void {
                    setSource(wanted, { accent: Qt.binding(() => guide.accent) })
                }

                anchors.fill: parent
                anchors.margins: guide.wide ? Theme.gap6 : Theme.gap3

                Component.onCompleted: show()
                onWantedChanged: show()
            }
        }
        ScrollPane {
            id: words

            anchors.bottom: foot.top
            anchors.left: parent.left
            anchors.leftMargin: guide.wide ? guide.drawingWidth : 0
            anchors.right: parent.right
            anchors.top: parent.top
            anchors.topMargin: guide.wide ? 0 : guide.drawingHeight
            contentHeight: column.height

            Column {
                id: column

                padding: Theme.gap8
                spacing: Theme.gap2
                width: words.width

                readonly property real inner: width - padding * 2

                Row {
                    bottomPadding: Theme.gap1
                    spacing: Theme.gap2

                    Symbol {
                        anchors.verticalCenter: parent.verticalCenter
                        color: guide.accent
                        name: guide.step.icon
                        size: Theme.icon
                    }
                    Label {
                        color: guide.accent
                        font.pixelSize: Theme.fontLabel
                        font.weight: Font.DemiBold
                        text: guide.step.eyebrow
                    }
                }
                Label {
                    Accessible.role: Accessible.Heading
                    font.pixelSize: Theme.fontTitle
                    font.weight: Font.DemiBold
                    objectName: "guideTitle"
                    text: guide.step.title
                    width: column.inner
                    wrapMode: Text.Wrap
                }
                Label {
                    bottomPadding: Theme.gap4
                    color: Theme.t2
                    text: guide.step.text
                    width: column.inner
                    wrapMode: Text.Wrap
                }
                Column {
                    spacing: Theme.gap3
                    width: column.inner

                    Repeater {
                        model: guide.step.bullets

                        // qmllint disable unqualified
                        FactRow {
                            required property var modelData

                            field: Qt.tint(Theme.raise, Qt.alpha(guide.accent, 0.13))
                            symbol: modelData.icon
                            text: modelData.text
                            tint: guide.accent
                            title: modelData.title
                            width: column.inner
                        }
                        // qmllint enable unqualified
                    }
                }
            }
        }
        GuideFoot {
            id: foot

            anchors.bottom: parent.bottom
            anchors.left: words.left
            anchors.right: parent.right
            accent: guide.accent
            count: guide.steps.length
            step: guide.stepIndex

            SecondaryButton {
                objectName: "skipGuideButton"
                text: "Пропустить"
                visible: !guide.isLast

                onClicked: guide.complete()
            }
            PrimaryButton {
                id: mainButton

                implicitHeight: Theme.buttonHeight
                objectName: "guideButton"
                text: guide.isLast && guide.kind === "app" ? "Начать чат" : "Понятно"

                onClicked: guide.advance()
            }
        }
    }
}
