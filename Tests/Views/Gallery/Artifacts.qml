import QtQuick
import Korvi.Views

// Documents: their cards, and how they are looked at.
Item {
    id: page

    readonly property string code: `import math

def площадь(радиус: float) -> float:
    """Площадь круга."""
    return math.pi * радиус ** 2

for i in range(3):
    print(f"{i}: {площадь(i):.2f}")  # три строки
`
    readonly property string document: `# План запуска

Коротко о том, что предстоит.

1. Собрать **команду**
2. Проверить \`сборку\`
3. Выпустить

| Этап | Срок |
|---|---:|
| Сборка | 2 дня |
| Проверка | 5 дней |
`

    implicitHeight: column.height + Theme.gap4 * 2

    Column {
        id: column

        spacing: Theme.gap4
        width: Math.min(page.width - Theme.gap4 * 2, Theme.px(Theme.readingWidth))
        x: (page.width - width) / 2
        y: Theme.gap4

        ArtifactCardView {
            isGenerating: true
            kindName: "loading"
            title: ""
            width: column.width
        }
        ArtifactCardView {
            isGenerating: true
            kindName: "html"
            title: "Страница с таблицей"
            width: column.width
        }
        ArtifactCardView {
            isGenerating: false
            isSelected: true
            kindName: "python"
            version: 2
            title: "Площадь круга и другие вещи, о которых говорит очень длинный заголовок"
            width: column.width
        }
        ArtifactDetailView {
            artifactId: "a"
            height: Theme.px(360)
            isGenerating: false
            kindName: "python"
            pdfError: "Не удалось сделать PDF вовремя."
            text: page.code
            title: "Площадь круга"
            width: column.width
        }
        ArtifactDetailView {
            artifactId: "b"
            height: Theme.px(420)
            isGenerating: false
            kindName: "markdown"
            pdfURL: "/tmp/План запуска.pdf"
            showShareSheet: true
            text: page.document
            title: "План запуска"
            width: column.width
        }
    }
}
