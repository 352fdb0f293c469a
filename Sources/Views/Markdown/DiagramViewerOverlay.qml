import QtQuick
import Korvi.Views // the types written in C++

// A diagram over the whole window, sharp at any scale. What is copied is its code.
ViewerOverlay {
    id: overlay

    required property string code

    // Beyond these the picture is stretched.
    readonly property real mostPixels: 16e6
    readonly property real sharpest: Math.sqrt(mostPixels / Math.max(1, drawing.implicitWidth * drawing.implicitHeight)) / drawing.Screen.devicePixelRatio
    readonly property int border: Theme.gap6 // of its ground

    signal codeWanted(string code)

    copyText: "Копировать код"
    fullScale: Math.max(2, 2 * largestFit)
    isReady: drawing.isReady
    largestFit: 2
    name: "Диаграмма"
    natural: drawing.isReady ? Qt.size(drawing.implicitWidth + border * 2, drawing.implicitHeight + border * 2) : Qt.size(0, 0)

    onCopyWanted: {
        codeWanted(code)
        say("Скопировано!")
    }
    onSaveWanted: question.ask(drawing.suggestedFile())

    over: [
        Spinner {
            anchors.centerIn: parent
            color: Theme.stageText
            running: !drawing.isReady && !drawing.isWrong && !drawing.isMissed
        },
        SaveQuestion {
            id: question

            onAnswered: file => overlay.say(drawing.savePng(file, Theme.diagram) ? "Сохранено" : "Не удалось сохранить")
        }
    ]

    Rectangle {
        color: Theme.diagram
        height: overlay.place.height
        radius: Theme.radiusCard
        visible: drawing.isReady
        width: overlay.place.width
        x: overlay.place.x
        y: overlay.place.y

        DiagramItem {
            id: drawing

            anchors.centerIn: parent
            availableWidth: overlay.room.width
            code: overlay.code
            drawingScale: Theme.textSize / 13
            height: implicitHeight * overlay.shownScale
            isDark: Theme.dark
            // In few steps: each of them is drawn anew.
            magnification: Math.max(1, Math.min(overlay.sharpest, Math.pow(2, Math.ceil(Math.log2(overlay.shownScale)))))
            objectName: "viewerDiagram"
            width: implicitWidth * overlay.shownScale
        }
    }
}
