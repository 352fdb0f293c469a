import QtQuick
import QtTest
import Korvi.Views

// What can be read in an answer that came in pieces, and where it stands, is the same as in one that came at once.
Item {
    id: root

    height: 600
    width: 600

    AdvancedMarkdownText {
        id: grown

        width: root.width
    }
    Component {
        id: another

        AdvancedMarkdownText {
            width: root.width
        }
    }

    TestCase {
        name: "AnswerGrowth"
        when: windowShown

        property int dice: 0

        // %1 is a word that has to be seen at the end.
        readonly property var fragments: ["# Заголовок %1\n", "## Ещё **%1**\n\n", "%1 ", "**%1** ", "*%1* ", "`%1` ", "**", "`", "*", "\n",
            "\n\n", "- пункт %1\n", "3. третий %1\n", "```cpp\nint %1;\n", "```\n", "$%1_1$ ", "$$%1^2$$\n", "$$\n%1\n", "$", "| а | %1 |\n|---|:-:|\n",
            "| %1 | 2 |\n", "| 1 | 2 | %1 |\n", "![%1](file:///1.png)\n", "%1 ![вид %1](a.png) ", "[[1]](https://example.org/a) ",
            "```mermaid\nA --> %1\n```\n", "%1, который всё не кончается, ".repeat(20), "😀", "😀 %1\n", "→ ", "\u2029", "<b>%1</b> &amp; ", "> %1\n",
            "<video", "[%1](http://", "    %1\n", "\t%1\r\n"]

        function random(count: int): int {
            dice = (dice * 1103515245 + 12345) & 0x7fffffff
            return (dice >> 8) % count
        }

        function collect(item, into) {
            if (!item.visible || item.opacity === 0)
                return
            const text = item instanceof TextEdit ? item.getText(0, item.length) : item instanceof Text ? item.text : ""
            const at = item.mapToItem(null, 0, 0)
            if (text.length > 0)
                into.push({ x: Math.round(at.x), y: Math.round(at.y), text: text })
            for (let i = 0; i < item.children.length; ++i)
                collect(item.children[i], into)
        }

        function shown(answer) {
            const all = []
            collect(answer, all)
            return all.sort((a, b) => a.y - b.y || a.x - b.x || (a.text < b.text ? -1 : 1)).map(line => `${line.x} ${line.y} ${line.text}`)
        }

        function test_piecesAndWhole() {
            failOnWarning(/./)
            for (let seed = 1; seed <= 150; ++seed) {
                dice = seed
                let text = ""
                const words = []
                for (let i = 0; i < 25; ++i) {
                    const fragment = fragments[random(fragments.length)]
                    if (fragment.includes("%1"))
                        words.push("слово" + i + "я")
                    text += fragment.replace(/%1/g, words[words.length - 1])
                }
                grown.text = ""
                grown.isStreaming = true
                for (let at = 0; at < text.length;) {
                    at += 1 + random(80)
                    grown.text = text.slice(0, at)
                    if (random(4) === 0)
                        wait(0)
                }
                grown.isStreaming = false
                wait(0)
                const pieces = shown(grown)
                grown.visible = false
                const fresh = createTemporaryObject(another, root, { text: text })
                wait(0)
                const whole = shown(fresh)
                grown.visible = true
                const where = "seed " + seed
                if (pieces.join() !== whole.join())
                    console.log(JSON.stringify(text))
                for (let i = 0; i < Math.max(pieces.length, whole.length); ++i)
                    compare(pieces[i], whole[i], where)
                compare(grown.plainText(), fresh.plainText(), where)
                const all = whole.join("\n")
                for (const word of words)
                    verify(all.includes(word), word + " is lost, " + where)
                fresh.destroy()
            }
        }
    }
}
