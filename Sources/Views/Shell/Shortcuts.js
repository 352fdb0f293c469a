.pragma library

// Every key that means something. Rows with an `id` work in the whole window and are registered from here; the others
// belong to what has the keyboard and are only listed.
const groups = [
    {
        title: "Чаты",
        rows: [
            { id: "newChat", keys: ["Ctrl+N"], text: "Новый чат" },
            { id: "quickSwitch", keys: ["Ctrl+K"], text: "Перейти к чату" },
            { id: "search", keys: ["Ctrl+F"], text: "Поиск по чатам" },
            { keys: ["F2"], text: "Переименовать чат" },
            { keys: ["Delete"], text: "Удалить чат" },
            { keys: ["Shift+F10"], text: "Меню чата" },
        ],
    },
    {
        title: "Сообщение",
        rows: [
            { id: "focusComposer", keys: ["Ctrl+L"], text: "К полю ввода" },
            { id: "chooseModel", keys: ["Ctrl+M"], text: "Выбрать модель" },
            { id: "attach", keys: ["Ctrl+U"], text: "Прикрепить файлы" },
            { keys: ["Ctrl+V"], text: "Вставить текст, изображение или файлы" },
            { keys: ["Enter"], text: "Отправить" },
            { keys: ["Shift+Enter"], text: "Новая строка" },
            { keys: ["↑"], text: "Вернуть последний вопрос" },
            { keys: ["Esc"], text: "Остановить ответ" },
        ],
    },
    {
        title: "Окно",
        rows: [
            { keys: ["F6"], text: "Между документом и его кнопками" },
            { id: "settings", keys: ["Ctrl+,"], text: "Настройки" },
            { id: "shortcuts", keys: ["Ctrl+/"], text: "Сочетания клавиш" },
        ],
    },
]

// What the keys of a shortcut give on a Russian keyboard. Qt looks for Latin letters by itself only where the desktop
// has a Latin layout as well.
const russian = {
    ",": "Б", ".": "Ю", "/": ".", A: "Ф", B: "И", C: "С", D: "В", E: "У", F: "А", G: "П", H: "Р", I: "Ш", J: "О",
    K: "Л", L: "Д", M: "Ь", N: "Т", O: "Щ", P: "З", Q: "Й", R: "К", S: "Ы", T: "Е", U: "Г", V: "М", W: "Ц", X: "Ч",
    Y: "Н", Z: "Я",
}

function registered() {
    return [].concat(...groups.map(group => group.rows)).filter(row => row.id)
}

function sequences(keys) {
    return keys.concat(keys.filter(key => key.slice(-1) in russian)
        .map(key => key.slice(0, -1) + russian[key.slice(-1)]))
}
