import QtQuick

// What an answer shows larger, over the whole window: its images and its diagrams.
Item {
    id: viewers

    signal copyWanted(string text)

    function showImages(images: var, index: int): void {
        pictures.open({ images: images, currentIndex: index })
    }

    function showDiagram(code: string): void {
        diagram.open({ code: code })
    }

    OnDemand {
        id: pictures

        source: "qrc:/qt-project.org/imports/Korvi/Views/ImageViewerOverlay.qml"
    }
    OnDemand {
        id: diagram

        source: "qrc:/qt-project.org/imports/Korvi/Views/DiagramViewerOverlay.qml"
    }
    Connections {
        function onCodeWanted(code) {
            viewers.copyWanted(code)
        }

        target: diagram.item
    }
}
