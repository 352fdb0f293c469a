import QtQuick
import Korvi.Views

Item {
    id: page

    readonly property var texts: [
        `| Случай | Сравнений | Память |
|:--|:--|--:|
| Лучший | ½ n log n | O(n) |
| Худший | n log n | O(n) |`,
        `| Функция | Что она делает | Стоит | |
|---|---|:-:|---|
| \`merge\` | проходит **обе половины** за один раз и складывает их в новый список, не трогая того, что уже отсортировано | $O(n)$ | да |
| \`merge_sort\` | делит, *сортирует*, сливает | $O(n \\log n)$ |
| лишняя | a | b | c | d | ещё |`,
        `| Язык | Год | Автор | Типизация | Сборка мусора | Компилятор | Пакеты | Лицензия |
|---|---|---|---|---|---|---|---|
| C++ | 1985 | Бьёрн Страуструп | статическая, слабая | нет | GCC, Clang, MSVC | Conan, vcpkg | разные |
| Python | 1991 | Гвидо ван Россум | динамическая, сильная | подсчёт ссылок | CPython, PyPy | PyPI | PSF |`
    ]

    implicitHeight: column.height + Theme.gap4 * 2

    Column {
        id: column

        spacing: Theme.gap6
        width: Math.min(page.width - Theme.gap4 * 2, Theme.readingWidth)
        x: (page.width - width) / 2
        y: Theme.gap4

        Repeater {
            model: page.texts

            MarkdownTableView {
                required property int index
                required property string modelData

                table: markdown.table(modelData)
                width: column.width

                Component.onCompleted: {
                    if (index === 0)
                        select(1, 2)
                    else if (index === 1)
                        takeCaret()
                }
            }
        }
    }
}
