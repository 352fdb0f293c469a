.pragma library

// The first-run guides, step by step. `accent` is a colour of the theme, `icon` and those of the bullets are symbols,
// `visual` is the drawing beside the words.
const steps = {
    app: [
        {
            eyebrow: "Добро пожаловать",
            title: "Рабочее место для мыслей, файлов и задач",
            text: "Пишите, прикладывайте материалы, включайте голос и держите весь контекст в одном окне.",
            icon: "sparkles",
            accent: "acc",
            visual: "orbit",
            bullets: [
                { icon: "text.bubble", title: "Беседы под рукой", text: "Всё, о чём вы говорили, остаётся в боковой панели." },
                { icon: "paperclip", title: "Материалы рядом", text: "Документы и снимки прикладываются прямо к вопросу." },
                { icon: "keyboard", title: "Без мыши", text: "Новый чат — Ctrl+N, к полю ввода — Ctrl+L." },
            ],
        },
        {
            eyebrow: "Чат",
            title: "Один чат для поиска, моделей и генерации",
            text: "Спрашивайте, ищите актуальное в интернете, анализируйте файлы и создавайте тексты или изображения.",
            icon: "text.bubble",
            accent: "violet",
            visual: "chat",
            bullets: [
                { icon: "magnifyingglass", title: "Свежие ответы", text: "Поиск в интернете с указанием источников." },
                { icon: "slider", title: "Модель на выбор", text: "Быстрая для мелочей, сильная для трудного." },
                { icon: "wand.and.stars", title: "Режимы", text: "Картинка, глубокий анализ, учёба — в одном меню." },
            ],
        },
        {
            eyebrow: "Голос",
            title: "Говорите вместо печати",
            text: "Сначала дайте доступ к микрофону и вставке текста. Потом диктовка работает поверх других приложений.",
            icon: "mic",
            accent: "ok",
            visual: "control",
            bullets: [
                { icon: "mic", title: "Микрофон", text: "Слушает только тогда, когда вы диктуете." },
                { icon: "keyboard", title: "Вставка текста", text: "Готовый текст появляется там, где стоит курсор." },
            ],
        },
        {
            eyebrow: "Медиа",
            title: "Все созданное живет в Медиа",
            text: "Картинки, музыка, видео и файлы сохраняются в одном месте, чтобы быстро открыть или скачать.",
            icon: "photo",
            accent: "amber",
            visual: "media",
            bullets: [
                { icon: "photo", title: "По вкладкам", text: "Фото, видео и музыка не перемешиваются." },
                { icon: "play", title: "Смотрите и слушайте", text: "Открыть и воспроизвести можно прямо здесь." },
            ],
        },
        {
            eyebrow: "Агент",
            title: "Агент работает сам: браузер, файлы, команды",
            text: "OpenClaw-агент открывает сайты, читает проект, запускает команды и показывает ход работы.",
            icon: "terminal",
            accent: "acc",
            visual: "agent",
            bullets: [
                { icon: "checklist", title: "Видно каждый шаг", text: "Что прочитано, что изменено, что запущено." },
                { icon: "hand.raised", title: "Последнее слово за вами", text: "Агента можно поправить или остановить." },
            ],
        },
    ],
    agent: [
        {
            eyebrow: "Агент",
            title: "OpenClaw выполняет задачу, а не просто отвечает",
            text: "Опишите результат: агент откроет рабочую среду, построит план и выполнит нужные действия.",
            icon: "terminal",
            accent: "acc",
            visual: "agent",
            bullets: [
                { icon: "checklist", title: "План и шаги", text: "Ход работы виден от начала до конца." },
                { icon: "globe", title: "Браузер и команды", text: "Агент пользуется тем же, чем и вы." },
            ],
        },
        {
            eyebrow: "Папки",
            title: "Добавьте проект или начните общую сессию",
            text: "Для кода лучше выбрать папку проекта. Для вопросов без файлов подойдет обычная сессия.",
            icon: "folder",
            accent: "amber",
            visual: "folders",
            bullets: [
                { icon: "folder.badge.plus", title: "Папка проекта", text: "Агент читает и меняет файлы в ней." },
                { icon: "text.bubble", title: "Общая сессия", text: "Когда файлы не нужны." },
            ],
        },
        {
            eyebrow: "Вместе",
            title: "Вы можете вмешиваться во время работы",
            text: "Пишите уточнения, меняйте направление, просите остановиться или проверить другой сценарий.",
            icon: "hand.raised",
            accent: "violet",
            visual: "workflow",
            bullets: [
                { icon: "text.bubble", title: "Уточнения на ходу", text: "Не нужно ждать конца, чтобы поправить." },
                { icon: "stop", title: "Остановка", text: "Сделанное остаётся, работа прекращается." },
            ],
        },
    ],
}

const drawings = {
    orbit: "GuideOrbit.qml",
    chat: "GuideChat.qml",
    control: "GuideControl.qml",
    media: "GuideMedia.qml",
    agent: "GuideAgent.qml",
    folders: "GuideFolders.qml",
    workflow: "GuideWorkflow.qml",
}
