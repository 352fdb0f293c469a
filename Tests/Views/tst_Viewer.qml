import QtQuick
import QtTest
import Korvi.Views

Item {
    id: root

    height: 400
    width: 600

    Item {
        id: before

        focus: true
    }
    Component {
        id: viewer

        ViewerOverlay {
            id: overlay

            isReady: true
            name: "Рисунок"
            natural: Qt.size(1000, 1000)

            Rectangle {
                height: overlay.place.height
                objectName: "looked at"
                width: overlay.place.width
                x: overlay.place.x
                y: overlay.place.y
            }
        }
    }
    SignalSpy {
        id: spy
    }

    TestCase {
        name: "Viewer"
        when: windowShown

        property ViewerOverlay overlay
        property Item picture
        property Flickable area

        function init() {
            failOnWarning(/./)
            Theme.reducedMotion = true
            before.forceActiveFocus()
            overlay = createTemporaryObject(viewer, root)
            overlay.open()
            tryCompare(overlay, "opened", true)
            area = findChild(overlay.contentItem, "viewerArea")
            picture = findChild(overlay.contentItem, "looked at")
        }

        function cleanup() {
            overlay.close()
            Theme.reducedMotion = false
        }

        function listen(name) {
            spy.target = null
            spy.signalName = name
            spy.target = overlay
            spy.clear()
        }

        function test_fitsAtFirstInTheMiddle() {
            verify(picture.height < 400 && picture.height > 200)
            compare(Math.round(picture.x + picture.width / 2), 300)
            compare(Math.round(picture.y + picture.height / 2), 200)
            verify(!overlay.isZoomed)
        }

        function test_aClickEnlargesWhereItIs() {
            const at = picture.mapFromItem(null, 250, 180)
            const part = Qt.point(at.x / picture.width, at.y / picture.height)
            mouseClick(root, 250, 180)
            verify(overlay.isZoomed)
            compare(picture.width, 1000)
            const now = picture.mapFromItem(null, 250, 180)
            verify(Math.abs(now.x / picture.width - part.x) < 0.01)
            verify(Math.abs(now.y / picture.height - part.y) < 0.01)
            mousePress(root, 300, 200)
            for (let x = 300; x > 200; x -= 10)
                mouseMove(root, x, 200, 1, Qt.LeftButton)
            mouseRelease(root, 200, 200)
            verify(picture.mapFromItem(null, 250, 180).x > now.x)
            mouseClick(root, 250, 180)
            verify(!overlay.isZoomed)
            tryCompare(area, "contentX", 0)
        }

        function test_theWheelEnlargesWithCtrlOnly() {
            mouseWheel(root, 300, 200, 0, 120)
            verify(!overlay.isZoomed)
            const before = picture.width
            mouseWheel(root, 300, 200, 0, 120, Qt.NoButton, Qt.ControlModifier)
            verify(Math.abs(picture.width / before - 1.25) < 0.01)
            for (let i = 0; i < 40; ++i)
                mouseWheel(root, 300, 200, 0, 120, Qt.NoButton, Qt.ControlModifier)
            compare(picture.width, 4000)
            for (let i = 0; i < 40; ++i)
                mouseWheel(root, 300, 200, 0, -120, Qt.NoButton, Qt.ControlModifier)
            verify(!overlay.isZoomed)
            compare(picture.width, before)
        }

        function test_byTheKeyboardAlone() {
            listen("stepWanted")
            keyClick(Qt.Key_Right)
            keyClick(Qt.Key_Left)
            compare(spy.signalArguments.map(arguments => arguments[0]), [1, -1])
            for (let i = 0; i < 6; ++i)
                keyClick(Qt.Key_Plus)
            verify(overlay.isZoomed)
            // The arrows move now what is larger than the window.
            const at = Qt.point(area.contentX, area.contentY)
            keyClick(Qt.Key_Right)
            keyClick(Qt.Key_Down)
            verify(area.contentX > at.x && area.contentY > at.y)
            compare(spy.count, 2)
            for (let i = 0; i < 100; ++i)
                keyClick(Qt.Key_Left)
            compare(area.contentX, 0)
            keyClick(Qt.Key_0)
            verify(!overlay.isZoomed)

            listen("copyWanted")
            keySequence("Ctrl+C")
            compare(spy.count, 1)
            overlay.isReady = false
            keySequence("Ctrl+C")
            compare(spy.count, 1)
            keyClick(Qt.Key_Tab)
            compare(root.Window.activeFocusItem.objectName, "zoomButton")
            keyClick(Qt.Key_Escape)
            tryCompare(overlay, "visible", false)
            verify(before.activeFocus)
        }

        function test_aClickBesideItCloses() {
            mouseClick(root, 20, 200)
            tryCompare(overlay, "visible", false)
        }
    }
}
