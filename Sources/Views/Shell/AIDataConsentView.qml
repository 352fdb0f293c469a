import QtQuick
import Korvi.Views // the types written in C++

// Asks, before anything else, whether what the user writes may go to the providers of the models. Only "yes" closes it.
Sheet {
    id: sheet

    readonly property list<QtObject> passedOn: [
        ConsentItem {
            symbol: "text.bubble"
            title: "Ваши сообщения"
            text: "Вопросы и вся беседа, в которой они заданы: без неё модель не поймёт, о чём речь."
        },
        ConsentItem {
            symbol: "paperclip"
            title: "Файлы и изображения"
            text: "Всё, что вы прикладываете к сообщениям."
        },
        ConsentItem {
            symbol: "mic"
            title: "Голос"
            text: "Запись речи, когда вы диктуете, — чтобы превратить её в текст."
        },
        ConsentItem {
            symbol: "terminal"
            title: "Задачи агента"
            text: "Ваше поручение, а также содержимое файлов и вывод команд, которые нужны агенту для работы."
        }
    ]

    dismissible: false
    firstFocus: buttons.accept
    naturalWidth: Theme.px(Theme.sheetWidth)
    title: "Ваши данные и модели ИИ"

    contentItem: Item {
        Keys.onDownPressed: rows.scroll(1)
        Keys.onUpPressed: rows.scroll(-1)
        implicitHeight: heading.implicitHeight + rows.contentHeight + foot.implicitHeight

        Column {
            id: heading

            bottomPadding: Theme.gap5
            spacing: Theme.gap2
            width: parent.width

            BrandMark {
                anchors.horizontalCenter: parent.horizontalCenter
                size: Theme.px(48)
            }
            Label {
                Accessible.role: Accessible.Heading
                font.pixelSize: Theme.fontHeading1
                font.weight: Font.DemiBold
                horizontalAlignment: Text.AlignHCenter
                text: sheet.title
                topPadding: Theme.gap2
                width: parent.width
                wrapMode: Text.Wrap
            }
            Label {
                color: Theme.t2
                horizontalAlignment: Text.AlignHCenter
                text: "Чтобы ответить, Korvi передаёт поставщикам моделей ИИ то, с чем вы просите помочь:"
                width: parent.width
                wrapMode: Text.Wrap
            }
        }
        ScrollPane {
            id: rows

            anchors.bottom: foot.top
            anchors.top: heading.bottom
            contentHeight: column.height
            objectName: "passedOn"
            width: parent.width + Theme.gap4 // the bar stands beside the words

            Column {
                id: column

                spacing: Theme.gap4
                width: rows.width - Theme.gap4

                Repeater {
                    model: sheet.passedOn

                    // qmllint disable unqualified
                    FactRow {
                        required property ConsentItem modelData

                        symbol: modelData.symbol
                        text: modelData.text
                        title: modelData.title
                        width: column.width
                    }
                    // qmllint enable unqualified
                }
            }
        }
        Column {
            id: foot

            anchors.bottom: parent.bottom
            spacing: Theme.gap4
            topPadding: Theme.gap5
            width: parent.width

            Label {
                color: Theme.t3
                font.pixelSize: Theme.fontLabel
                horizontalAlignment: Text.AlignHCenter
                text: "Пароли и данные для входа поставщикам не передаются. Что именно отправить, каждый раз решаете вы."
                width: parent.width
                wrapMode: Text.Wrap
            }
            DialogButtons {
                id: buttons

                acceptText: "Принимаю"
                fill: true
                rejectText: "Отклонить"
                width: parent.width

                onAccepted: sheet.accept()
                onRejected: refusal.open({
                    acceptText: "Понятно",
                    message: "Для использования приложения необходимо дать согласие на обработку данных AI-провайдерами.",
                    rejectText: "",
                    title: "Требуется согласие"
                })
            }
        }
        OnDemand {
            id: refusal

            source: "ConfirmDialog.qml"
        }
    }
}
