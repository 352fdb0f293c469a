import QtQuick
import QtTest
import Korvi.Views

Item {
    id: root

    height: 300
    width: 200

    ListModel {
        id: rows // of `size`, the height of the row at a width of 200, and `tag`, its name
    }
    Flickable {
        id: view

        anchors.fill: parent
        boundsBehavior: Flickable.StopAtBounds
        contentWidth: width

        VirtualColumn {
            id: column

            property int made: 0

            bottomPadding: 10
            flickable: view
            model: rows
            spacing: 5
            topPadding: 20
            width: view.width

            delegate: Item {
                required property int index
                required property real size
                required property string tag
                property alias late: late.height
                property alias inner: inner

                implicitHeight: Math.ceil(size * 200 / width) + late.height

                Component.onCompleted: column.made += 1

                Column {
                    id: inner

                    width: parent.width

                    Item {
                        id: late

                        height: 0
                        width: parent.width
                    }
                    Item {
                        height: parent.parent.size / 2
                        width: parent.width
                    }
                    Item {
                        height: parent.parent.size / 2
                        width: parent.width
                    }
                }
            }
        }
    }
    SignalSpy {
        id: removedFocus

        signalName: "focusedRowRemoved"
        target: column
    }

    TestCase {
        name: "VirtualColumn"
        when: windowShown

        property int seed: 1
        property int nextTag: 0

        // The same numbers in every run.
        function dice(below) {
            seed = (seed * 48271) % 2147483647
            return seed % below
        }

        function row(size) {
            return { size: size, tag: "row" + nextTag++ }
        }

        function fillWith(count, size) {
            const all = []
            for (let i = 0; i < count; ++i)
                all.push(row(size ?? 20 + dice(200)))
            rows.append(all)
            column.forceLayout()
        }

        function init() {
            failOnWarning(/./)
            rows.clear()
            root.width = 200
            root.height = 300
            column.jumpDuration = 0
            column.showEnd()
            column.forceLayout()
            column.made = 0
        }

        // Where on the screen the upper edge of that row is.
        function place(index) {
            return column.rowPosition(index) - column.position
        }

        function indexOf(tag) {
            for (let i = 0; i < rows.count; ++i) {
                if (rows.get(i).tag === tag)
                    return i
            }
            return -1
        }

        // What holds whatever happened: rows stand one under the other without gap or overlap, the view is filled, the
        // Flickable can reach just what there is, and whoever follows sees the end.
        function checkInvariants(when) {
            let y = column.topPadding
            for (let i = 0; i < rows.count; ++i) {
                if (column.rowPosition(i) !== y)
                    compare(column.rowPosition(i), y, when + ": sum of the heights above row " + i)
                const item = column.itemAt(i)
                if (item) {
                    const screen = item.mapToItem(view, 0, 0).y
                    if (screen !== y - column.position || item.height !== column.heightAt(i) || item.tag !== rows.get(i).tag
                            || item.index !== i)
                        fail(when + ": row " + i + " is at " + screen + " instead of " + (y - column.position) + ", "
                            + item.height + " high instead of " + column.heightAt(i) + ", " + item.tag)
                } else if (y + column.heightAt(i) > column.position && y < column.position + view.height) {
                    fail(when + ": row " + i + " is in view and has no item")
                }
                y += column.heightAt(i) + column.spacing
            }
            const end = y - (rows.count ? column.spacing : 0) + column.bottomPadding
            const turn = column.turnRow < 0 ? 0 : column.rowPosition(column.turnRow) - column.topPadding + view.height
            compare(column.scrollMetrics.contentHeight, Math.max(end, turn), when)
            compare(view.contentHeight + view.topMargin, Math.max(end, turn), when)
            compare(view.contentY + view.topMargin, column.position, when)
            if (column.following)
                compare(column.distanceToEnd, 0, when)
            verify(column.position >= 0 && column.distanceToEnd >= 0, when)
        }

        function test_thousandRowsCostWhatIsSeen() {
            fillWith(1000, 60)
            checkInvariants("opened")
            compare(column.distanceToEnd, 0)
            verify(column.made < 12, column.made + " rows made")
            wait(100) // what is near comes later, and then it is quiet
            verify(column.liveRows() < 20, column.liveRows() + " rows live")
            column.scrollTo(0)
            column.forceLayout()
            verify(column.liveRows() < 30, column.liveRows() + " rows live")
            compare(column.firstVisibleRow, 0)
        }

        function test_rowMayChangeAnywhere_data() {
            return [
                { tag: "above the view", row: 2 },
                { tag: "below the view", row: 38 },
            ]
        }

        function test_rowMayChangeAnywhere(data) {
            fillWith(40, 50)
            column.positionAtRow(20)
            column.forceLayout()
            compare(place(20), column.topPadding)
            verify(!column.following)
            for (const size of [400, 10, 50]) {
                rows.setProperty(data.row, "size", size)
                column.forceLayout()
                compare(place(20), column.topPadding)
                checkInvariants(data.tag + " " + size)
            }
            rows.insert(data.row, [row(70), row(80)])
            column.forceLayout()
            compare(place(indexOf(rows.get(data.row < 20 ? 22 : 20).tag)), column.topPadding)
            rows.remove(data.row, 2)
            column.forceLayout()
            compare(place(20), column.topPadding)
            checkInvariants("removed")
        }

        // An image that loads in the middle of an answer, above what is read in the same answer.
        function test_partOfTheRowAtTheEdgeGrows() {
            fillWith(10, 600)
            column.positionAtRow(4)
            column.forceLayout()
            column.scrollBy(column.topPadding + 350)
            column.forceLayout()
            const item = column.itemAt(4)
            const read = item.inner.children[2]
            const before = read.mapToItem(view, 0, 0).y
            item.late = 120
            tryCompare(item.inner.children[1], "y", 120)
            column.forceLayout()
            compare(read.mapToItem(view, 0, 0).y, before)
            checkInvariants("grown")
        }

        function test_anotherWidthKeepsThePlaceAndTheEnd() {
            fillWith(60)
            column.positionAtRow(30)
            column.forceLayout()
            for (const width of [400, 100, 333]) {
                root.width = width
                column.forceLayout()
                compare(place(30), column.topPadding)
                checkInvariants("width " + width)
            }
            column.showEnd()
            root.width = 120
            root.height = 500
            column.forceLayout()
            compare(column.distanceToEnd, 0)
            checkInvariants("at the end")
        }

        function test_turnHasAScreenAndIsOutgrown() {
            fillWith(20, 50)
            column.showTurn(18)
            column.forceLayout()
            compare(place(18), column.topPadding)
            verify(!column.farFromEnd)
            root.height = 400
            column.forceLayout()
            compare(place(18), column.topPadding)
            rows.setProperty(19, "size", 250)
            column.forceLayout()
            compare(place(18), column.topPadding)
            rows.setProperty(19, "size", 900)
            column.forceLayout()
            compare(column.distanceToEnd, 0)
            verify(place(18) < 0)
            rows.setProperty(19, "size", 100)
            column.forceLayout()
            rows.remove(3)
            column.forceLayout()
            compare(column.turnRow, 17)
            compare(place(17), column.topPadding)
            rows.remove(17)
            column.forceLayout()
            compare(column.turnRow, -1)
            checkInvariants("removed")
        }

        function test_jumpsEaseOutAndTheReaderEndsThem() {
            fillWith(300, 50)
            column.jumpDuration = 150
            column.scrollTo(0)
            column.forceLayout()
            const made = column.made
            column.showEnd(VirtualColumn.Animated)
            verify(column.distanceToEnd > 0)
            tryCompare(column, "distanceToEnd", 0)
            verify(column.made - made < 60, column.made - made + " rows made on the way")
            verify(column.following)
            column.scrollTo(0)
            column.showEnd(VirtualColumn.Animated)
            column.scrollTo(100)
            wait(200)
            compare(column.position, 100)
        }

        function test_noJumpWhenAllIsSeen() {
            fillWith(2, 50)
            column.letGo()
            column.showEnd(VirtualColumn.AtOnce, false)
            compare(column.scrollMetrics.contentHeight, 135)
            compare(column.scrollMetrics.containerHeight, 300)
            compare(column.position, 0)
            column.forceLayout()
            verify(column.following) // the end was in view all the time
        }

        // Rows and parts of rows that come into view from above are not as high as they were taken for.
        function test_whatIsOnTheScreenMovesWithTheReader_data() {
            return [{ tag: "low", size: 20 }, { tag: "as estimated", size: 64 }, { tag: "high", size: 700 }]
        }

        function test_whatIsOnTheScreenMovesWithTheReader(data) {
            fillWith(60, data.size)
            for (let step = 0; step < 60; ++step) {
                const row = Math.min(column.firstVisibleRow + 1, column.lastVisibleRow)
                const before = place(row)
                column.scrollBy(-35)
                column.forceLayout()
                if (column.position > 0)
                    compare(place(row), before + 35, "step " + step)
                checkInvariants("step " + step)
                if (step % 7 === 0)
                    wait(0) // and those that were made ahead
            }
        }

        function test_flickGoesOnWhileRowsAboveGetTheirHeights() {
            fillWith(200, 300) // estimated at 64
            wait(50)
            view.flick(0, 3000)
            verify(view.moving)
            let last = column.position
            tryVerify(() => {
                column.forceLayout()
                verify(column.position - last < 3000)
                checkInvariants("flick")
                return !view.moving
            })
            column.forceLayout()
            verify(column.distanceToEnd > 500)
            verify(!column.following)
            compare(view.topMargin, 0)
            checkInvariants("rest")
        }

        function test_rowWithTheKeyboardStays() {
            fillWith(100, 50)
            column.itemAt(99).forceActiveFocus()
            compare(column.focusedRow, 99)
            column.scrollTo(0)
            column.forceLayout()
            verify(column.itemAt(99))
            rows.remove(10)
            column.forceLayout()
            compare(column.focusedRow, 98)
            removedFocus.clear()
            rows.remove(98)
            compare(removedFocus.count, 1)
            compare(column.focusedRow, -1)
        }

        function test_whateverHappensNothingJumps_data() {
            return [1, 2, 3, 4, 5, 6].map(seed => ({ tag: "seed " + seed, seed: seed }))
        }

        function test_whateverHappensNothingJumps(data) {
            seed = data.seed * 7919
            fillWith(30)
            for (let step = 0; step < 250; ++step) {
                const any = rows.count ? dice(rows.count) : 0
                // The row at the upper edge, and whether this step may move it: only the reader may, and the end.
                let anchor = column.firstVisibleRow
                while (anchor + 1 < rows.count && place(anchor) + column.heightAt(anchor) <= column.topPadding)
                    ++anchor // only its last pixels are in view
                const tag = anchor >= 0 ? rows.get(anchor).tag : ""
                const before = anchor >= 0 ? place(anchor) : 0
                let byReader = column.following
                let what = ""
                switch (dice(10)) {
                case 0:
                    what = "append"
                    rows.append(row(dice(400)))
                    break
                case 1:
                    what = "insert at " + any
                    rows.insert(any, [row(dice(400)), row(dice(90))])
                    break
                case 2:
                    what = "remove " + any
                    if (rows.count > 3)
                        rows.remove(any)
                    break
                case 3: case 4:
                    what = "resize " + any
                    rows.setProperty(any, "size", dice(500))
                    break
                case 5:
                    what = "late growth"
                    if (column.itemAt(any))
                        column.itemAt(any).late = dice(200)
                    break
                case 6:
                    what = "scroll"
                    byReader = true
                    column.scrollBy(dice(900) - 450)
                    break
                case 7:
                    what = "set contentY" // as a scroll bar does
                    byReader = true
                    view.contentY = dice(Math.max(1, view.contentHeight - view.height))
                    break
                case 8:
                    what = "show"
                    byReader = true
                    if (dice(2))
                        column.showEnd()
                    else
                        column.showTurn(rows.count - 1 - dice(3))
                    break
                case 9:
                    what = "width"
                    root.width = 100 + dice(300)
                    root.height = 200 + dice(200)
                    break
                }
                const when = "step " + step + ", " + what
                column.forceLayout()
                checkInvariants(when)
                const now = tag ? indexOf(tag) : -1
                const atABound = column.position === 0 || column.distanceToEnd === 0
                // A row whose own inside takes another height is held by what was read in it.
                const own = what === "late growth" || what === "width" || what === "resize " + anchor
                if (!byReader && now >= 0 && !atABound && !(own && before < column.topPadding))
                    compare(place(now), before, when)
            }
        }
    }
}
