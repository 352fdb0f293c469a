import QtQuick
import QtTest
import Korvi.Views

Item {
    height: 400
    width: 500

    ImageAttachmentView {
        id: view

        alt: "Кот"
        url: ""
        width: 500
    }
    WebPicture {
        id: picture

        height: 100
        readsFiles: true
        width: 100
    }
    SignalSpy {
        id: copied

        signalName: "copyWanted"
        target: view
    }

    TestCase {
        name: "Image"
        when: windowShown

        function test_onlyTheWebAndThisMachineAreAsked_data() {
            return [
                { tag: "file:///etc/passwd", refused: true },
                { tag: "/etc/passwd", refused: true },
                { tag: "qrc:/korvi/symbols/x.svg", refused: true },
                { tag: "image://provider/x", refused: true },
                { tag: "data:image/png;base64,AAAA", refused: true },
                { tag: "http://example.org/a.png", refused: true },
                { tag: "https:///a.png", refused: true },
                { tag: "", refused: true },
                { tag: "http://127.0.0.1:1/a.png", refused: false },
                { tag: "https://localhost:1/a.png", refused: false },
            ]
        }

        function test_onlyTheWebAndThisMachineAreAsked(data) {
            view.url = data.tag
            compare(view.isRefused, data.refused)
            if (data.refused)
                verify(!view.hasFailed && !view.isShown)
            view.url = ""
        }

        function test_pixelsAndDrawingsAreDecoded() {
            for (const file of ["docs/images/chat-light.png", "Resources/Symbols/check.svg"]) {
                picture.source = Qt.resolvedUrl("../../" + file).toString()
                tryCompare(picture, "status", WebPicture.Ready)
            }
            compare(picture.naturalSize, Qt.size(24, 24))
            picture.source = Qt.resolvedUrl("tst_Image.qml").toString()
            tryCompare(picture, "status", WebPicture.Failed)
        }

        function test_whatFailedCanBeAskedForAgain() {
            view.url = "http://127.0.0.1:1/a.png"
            verify(view.implicitHeight >= Theme.imagePlaceholder)
            tryCompare(view, "hasFailed", true)
            const button = findChild(view, "imageRetryButton")
            mouseClick(button)
            verify(!view.hasFailed)
            tryCompare(view, "hasFailed", true)
            view.forceActiveFocus()
            keyClick(Qt.Key_C, Qt.ControlModifier)
            compare(copied.signalArguments[0][0], "http://127.0.0.1:1/a.png")
            view.url = ""
        }
    }
}
