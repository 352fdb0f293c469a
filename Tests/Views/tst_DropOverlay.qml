import QtQuick
import QtTest
import Korvi.Views

Item {
    id: root

    property var taken: []

    height: 400
    width: 600

    DropOverlay {
        id: area

        anchors.fill: parent

        onTaken: (urls, image, type) => root.taken.push({ urls: urls.map(String), bytes: image.byteLength, type: type })
    }

    TestCase {
        name: "DropOverlay"
        when: windowShown

        readonly property var overlay: findChild(area, "dropOverlay")
        readonly property point middle: Qt.point(300, 200)

        function init() {
            failOnWarning(/./)
            root.taken = []
        }

        function test_whatIsDroppedIsTaken_data() {
            const files = ["file:///tmp/a.pdf", "file:///tmp/b.png"]
            return [
                { tag: "files", urls: files, type: "", taken: { urls: files, bytes: 0, type: "" } },
                { tag: "image", urls: [], type: "image/png", taken: { urls: [], bytes: 7, type: "image/png" } },
                {
                    tag: "image of a page", urls: ["https://a/b.gif"], type: "image/gif",
                    taken: { urls: ["https://a/b.gif"], bytes: 7, type: "image/gif" },
                },
            ]
        }

        function test_whatIsDroppedIsTaken(data) {
            const window = root.Window.window
            verify(dragging.hold(window, middle, data.urls, data.type))
            tryVerify(() => overlay.opacity === 1)
            dragging.drop(window, middle)
            compare(root.taken, [data.taken])
            tryVerify(() => !overlay.visible)
        }

        function test_textIsNotForUs() {
            dragging.hold(root.Window.window, middle, [], "", "просто текст")
            verify(!area.containsDrag)
            dragging.leave(root.Window.window)
            compare(root.taken, [])
        }

        function test_whatIsTakenAwayAgainLeavesNothing() {
            verify(dragging.hold(root.Window.window, middle, ["file:///tmp/a.pdf"]))
            dragging.leave(root.Window.window)
            tryVerify(() => !overlay.visible)
            compare(root.taken, [])
        }
    }
}
