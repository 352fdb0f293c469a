import QtQuick
import Korvi.Views

Item {
    id: page

    readonly property string text: `# Сортировка слиянием

Сортировка слиянием делит список пополам, сортирует половины и **сливает** их. Вспомогательная функция \`merge\` проходит обе половины за один раз и берёт каждый раз *меньший* из двух первых элементов, поэтому порядок равных сохраняется.

## Как она устроена

Рекуррентность $T(n) = 2T(n/2) + O(n)$ даёт $O(n \\log n)$ сравнений при любом порядке на входе, а глубина рекурсии не больше $\\log_2 n$ вызовов:

$$
T(n) = 2T(n/2) + O(n) = O(n \\log n)
$$

- **Деление:** список делят на две половины; здесь ничего не сравнивают, поэтому этот шаг ничего не стоит даже для очень длинных списков.
- **Слияние:** \`merge(left, right)\` проходит обе.
- Всё остальное — рекурсия.

1. Разделить список.
2. Отсортировать каждую половину тем же способом, пока в половине не останется один элемент: такой список уже отсортирован.
3. Слить.

### Код на Python

\`\`\`python
def merge_sort(a):
    if len(a) <= 1:
        return a
    m = len(a) // 2  # середина списка
    return merge(merge_sort(a[:m]), merge_sort(a[m:]))
\`\`\`

#### Сравнение случаев

| Случай | Сравнений | Память |
|---|---|--:|
| Лучший | ½ n log n | O(n) |
| Худший | n log n | O(n) |

Вспомогательная функция \`merge\` проходит обе половины за один раз. [[1]](https://ru.wikipedia.org/wiki/x) [[2]](https://docs.python.org/3/)`

    implicitHeight: answer.implicitHeight + Theme.gap4 * 2

    AdvancedMarkdownText {
        id: answer

        isStreaming: true
        text: page.text
        width: Math.min(page.width - Theme.gap4 * 2, Theme.readingWidth)
        x: (page.width - width) / 2
        y: Theme.gap4
    }
}
