import QtQuick
import Korvi.Views

Item {
    id: page

    readonly property string merge: `def merge_sort(a):
    if len(a) <= 1:
        return a
    m = len(a) // 2  # середина списка
    return merge(merge_sort(a[:m]), merge_sort(a[m:]))
"""
Строка
на три строки 42
"""
print("конец", 'it\\'s', 3.14)`
    readonly property string page1: `<!-- Заголовок
  в две строки -->
<a href="https://example.org" class="link">Текст</a>`

    implicitHeight: column.height + Theme.gap4 * 2

    Column {
        id: column

        spacing: Theme.gap4
        width: Math.min(page.width - Theme.gap4 * 2, Theme.readingWidth)
        x: (page.width - width) / 2
        y: Theme.gap4

        CodeBlockView {
            code: page.merge
            language: "python"
            width: column.width
        }
        CodeBlockView {
            code: page.page1
            language: "html"
            width: column.width

            Component.onCompleted: select(5, 40)
        }
        CodeBlockView {
            code: "const слово = await fetch('/api/v1/chats', { headers: { Authorization: `Bearer ${token}` } }) // длинная строка, которая не помещается\nfunction конец() { return null }\n\tif (a !== b && c >= d) { window.alert(\"=> готово\") }"
            language: "tsx"
            width: column.width
        }
        CodeBlockView {
            code: "const слово = await fetch('/api/v1/chats', { headers: { Authorization: `Bearer ${token}` } }) // длинная строка, которая не помещается\nfunction конец() { return null }"
            language: "typescript"
            width: column.width
            wraps: true
        }
        CodeBlockView {
            code: "$ make install # без языка\nreturn 0"
            width: column.width
        }
    }
}
