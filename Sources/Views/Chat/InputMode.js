.pragma library

// What the composer can be set to. The mode changes its placeholder and its chip, nothing else.
const none = { id: "none", placeholder: "Спросите что угодно" }
const modes = [
    {
        id: "createImage", symbol: "photo", chip: "Изображение",
        placeholder: "Опишите изображение",
        title: "Создать изображение", subtitle: "Визуализируй что угодно",
    },
    {
        id: "thinking", symbol: "lightbulb", chip: "Размышление",
        placeholder: "Задайте сложный вопрос",
        title: "Думать", subtitle: "Думать дольше для лучших ответов",
    },
    {
        id: "deepResearch", symbol: "doc.text.magnifyingglass", chip: "Анализ",
        placeholder: "Получить детальный отчёт",
        title: "Глубокий анализ", subtitle: "Получить детальный отчёт",
    },
    {
        id: "webSearch", symbol: "globe", chip: "Поиск",
        placeholder: "Найти в интернете",
        title: "Поиск в интернете", subtitle: "Найти актуальные новости и информацию",
    },
    {
        id: "study", symbol: "graduationcap", chip: "Обучение",
        placeholder: "Чему хотите научиться?",
        title: "Учиться", subtitle: "Изучить новую концепцию",
    },
]
const editingPlaceholder = "Опишите изменения..."

function of(id) {
    return modes.find(mode => mode.id === id) ?? none
}

// An image that waits to be edited says what to type, whatever the mode.
function placeholder(id, editing) {
    return editing ? editingPlaceholder : of(id).placeholder
}
