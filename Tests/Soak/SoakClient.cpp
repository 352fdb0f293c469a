// soak-client: the real client without a window, in the hands of somebody restless. It asks numbered questions,
// begins chats, opens others while answers run, stops some, and writes down what it did. soak.py leads it: commands
// come line by line on standard input (`code DIGITS`, `go`, `rest`, `report FILE`), and the end of the input ends it.
#include "Chat/MessageComposition.h"
#include "KorviApp.h"
#include "Log.h"

#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QSocketNotifier>
#include <QStandardPaths>
#include <QTextStream>
#include <QTimer>

#include <unistd.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;

// Each picks an answer of the demonstration; "эхо" adds the question to it, so that no two answers are equal.
const QStringList words{u"таблица"_s, u"код"_s, u"формула"_s, u"размышление"_s, u"длинный"_s, u"ошибка"_s,
    u"сортировка"_s, u"привет"_s, u"медленный"_s};
const QStringList toolWords{u"инструменты"_s, u"поиск"_s, u"картинка"_s, u"неудачная картинка"_s, u"видео"_s,
    u"документ"_s, u"файл"_s, u"артефакт html"_s, u"артефакт диаграмма"_s, u"источники"_s};
constexpr qsizetype answersAtOnce = 2; // the service allows a user four, and each has two clients
constexpr int settleMs = 300;

// All that is no text: what tools have brought, or are said to be at.
QJsonArray blocksOf(const ChatMessage& message) {
    QJsonArray blocks;
    for (const MessageContent& block : message.content.value_or(std::vector<MessageContent>())) {
        if (!block.as<MessageContent::Text>() && !block.as<MessageContent::Thinking>())
            blocks.append(block.toJson());
    }
    return blocks;
}

QJsonArray toJson(const std::vector<ChatMessage>& messages) {
    QJsonArray array;
    for (const ChatMessage& message : messages)
        array.append(QJsonObject{{"isUser"_L1, message.role == ChatMessage::Role::user},
            {"text"_L1, MessageComposition::joinedText(message)},
            {"thinking"_L1, MessageComposition::joinedThinking(message)}, {"blocks"_L1, blocksOf(message)}});
    return array;
}

class SoakClient : public QObject {
public:
    SoakClient(QString email, QString name, const QString& log, quint32 seed)
        : m_email(std::move(email))
        , m_name(std::move(name))
        , m_log(log)
        , m_random(seed) {
        m_log.open(QIODevice::Append);
        connect(&m_input, &QSocketNotifier::activated, this, &SoakClient::readCommands);
        connect(&m_app.chat(), &ChatViewModel::generationErrorChanged, this, [this] {
            if (!m_app.chat().generationError().isEmpty())
                note(u"banner"_s, m_app.chat().generationError());
        });
        connect(&m_signIn, &QTimer::timeout, this, &SoakClient::signIn);
        m_signIn.start(100);
        m_actions.setSingleShot(true);
        connect(&m_actions, &QTimer::timeout, this, &SoakClient::act);
        m_app.auth().start();
    }

private:
    // On the disk before anything else happens: a kill may be next.
    void note(const QString& kind, const QString& text, qint64 chatId = 0) {
        m_log.write(QJsonDocument(QJsonObject{{"kind"_L1, kind}, {"text"_L1, text}, {"chat"_L1, chatId},
                                      {"at"_L1, QDateTime::currentMSecsSinceEpoch()}})
                        .toJson(QJsonDocument::Compact) +
            '\n');
        m_log.flush();
        ::fsync(m_log.handle());
    }

    static void say(const QString& line) { QTextStream(stdout) << line << Qt::endl; }

    int chance(int below) { return static_cast<int>(m_random.bounded(below)); }

    void readCommands() {
        char bytes[4096];
        const ssize_t count = ::read(STDIN_FILENO, bytes, sizeof bytes);
        if (count <= 0)
            return QCoreApplication::quit();
        m_commands.append(bytes, count);
        for (qsizetype end = 0; (end = m_commands.indexOf('\n')) >= 0; m_commands.remove(0, end + 1)) {
            const QString line = QString::fromUtf8(m_commands.first(end));
            const QString argument = line.section(u' ', 1);
            if (line.startsWith("code "_L1)) {
                m_isCodeWanted = false;
                m_app.auth().validateCode(argument);
            } else if (line == "go"_L1) {
                m_actions.start(1);
            } else if (line == "rest"_L1) {
                m_actions.stop();
                takeReturned();
                say(u"resting"_s);
            } else if (line.startsWith("report "_L1)) {
                beginReport(argument);
            }
        }
    }

    // As a person would: the form when there is no session, the button when there is no line.
    void signIn() {
        AuthViewModel& auth = m_app.auth();
        if (!auth.isInitialCheckComplete() || auth.isLoading())
            return;
        if (auth.isAuthenticated()) {
            if (!std::exchange(m_isSignedIn, true))
                say(u"signed-in"_s);
        } else if (auth.hasNetworkError()) {
            auth.retryConnection();
        } else if (!auth.isEnterCodeStep()) {
            m_isSignedIn = false;
            auth.requestEmailCode(m_email);
        } else if (!std::exchange(m_isCodeWanted, true)) {
            say(u"code-wanted"_s);
        }
    }

    void act() {
        m_actions.start(50 + chance(600));
        if (!m_app.auth().isAuthenticated())
            return;
        takeReturned();
        ChatViewModel& chat = m_app.chat();
        const int choice = chance(100);
        if (choice < 45)
            ask();
        else if (choice < 58)
            chat.createChat();
        else if (choice < 90)
            openAny();
        else if (choice < 95 && chat.isGenerating())
            stop();
        else if (chat.activeChatId() > 0)
            chat.selectChat(chat.activeChatId()); // reads it again
    }

    void takeReturned() {
        ChatViewModel& chat = m_app.chat();
        for (const QString& text : chat.currentInput().split(u"\n\n"_s, Qt::SkipEmptyParts))
            note(u"returned"_s, text);
        chat.setCurrentInput({});
    }

    void ask() {
        ChatViewModel& chat = m_app.chat();
        if (chat.isGenerating() || answersUnderWay() >= answersAtOnce)
            return;
        const int choice = chance(60);
        const bool wantsTool = chance(2) == 0;
        const QString word = wantsTool ? toolWords.at(choice % toolWords.size())
                                       : words.at(choice == 0 ? words.size() - 1 : choice % (words.size() - 1));
        const QString text = u"soak %1-%2 %3%4"_s.arg(m_name)
                                 .arg(++m_asked, 4, 10, QChar(u'0'))
                                 .arg(chance(8) == 0 ? QString() : u"эхо "_s, word);
        const qint64 chatId = chat.activeChatId();
        chat.setCurrentInput(text);
        chat.sendMessage();
        note(u"sent"_s, text, chatId);
        m_lastAsked.start();
    }

    qsizetype answersUnderWay() {
        const ChatListModel* chats = m_app.chat().chats();
        qsizetype count = m_lastAsked.isValid() && m_lastAsked.elapsed() < 300 ? 1 : 0;
        for (int row = 0; row < chats->count(); ++row)
            count += chats->data(chats->index(row), ChatListModel::IsGeneratingRole).toBool() ? 1 : 0;
        return count;
    }

    void openAny() {
        const auto& chats = m_app.chat().chats()->chats();
        if (chats.empty())
            return;
        // Mostly one of the newest: that is where answers run.
        const auto size = static_cast<int>(chats.size());
        const int row = chance(3) == 0 ? chance(size) : chance(std::min(size, 4));
        m_app.chat().selectChat(chats[static_cast<std::size_t>(row)].id);
    }

    void stop() {
        note(u"stopped"_s, m_app.chat().lastQuestion());
        m_app.chat().stopGeneration();
    }

    // What is cached of each chat, and what is shown of it once it has been loaded.
    void beginReport(const QString& file) {
        takeReturned();
        m_reportFile = file;
        m_shown = {};
        m_left.clear();
        const auto& chats = m_app.chat().chats()->chats();
        QJsonObject cached;
        {
            const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
            Defaults defaults(data + u"/korvi/defaults.sqlite"_s);
            SystemClock clock;
            DataCacheManager cache(defaults, clock);
            for (const Chat& chat : chats) {
                m_left.append(chat.id);
                if (const auto messages = cache.getCachedMessages(chat.id))
                    cached.insert(QString::number(chat.id), toJson(*messages));
            }
        }
        m_report = {{"cached"_L1, cached}, {"open"_L1, m_app.chat().activeChatId()},
            {"atRest"_L1, toJson(m_app.chat().messages()->messages())}, {"isConnected"_L1, m_app.chat().isConnected()}};
        m_app.chat().createChat();
        continueReport();
    }

    void continueReport() {
        if (m_left.isEmpty()) {
            m_report.insert("shown"_L1, m_shown);
            QFile file(m_reportFile);
            file.open(QIODevice::WriteOnly);
            file.write(QJsonDocument(m_report).toJson(QJsonDocument::Compact));
            file.close();
            return say(u"reported"_s);
        }
        const qint64 chatId = m_left.takeFirst();
        m_app.chat().selectChat(chatId);
        QTimer::singleShot(settleMs, this, [this, chatId] {
            m_shown.insert(QString::number(chatId), toJson(m_app.chat().messages()->messages()));
            continueReport();
        });
    }

    QString m_email;
    QString m_name; // no two processes have the same: no two questions are equal
    QFile m_log;
    QRandomGenerator m_random;
    KorviApp m_app;
    QSocketNotifier m_input{STDIN_FILENO, QSocketNotifier::Read};
    QByteArray m_commands;
    QTimer m_signIn;
    QTimer m_actions;
    QElapsedTimer m_lastAsked;
    bool m_isSignedIn = false;
    bool m_isCodeWanted = false;
    int m_asked = 0;
    QString m_reportFile;
    QJsonObject m_report;
    QJsonObject m_shown;
    QList<qint64> m_left;
};

}
}

int main(int argc, char* argv[]) {
    const QGuiApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addOptions({{QStringLiteral("email"), {}, QStringLiteral("address")},
        {QStringLiteral("name"), {}, QStringLiteral("name")}, {QStringLiteral("log"), {}, QStringLiteral("file")},
        {QStringLiteral("seed"), {}, QStringLiteral("number")}});
    parser.process(application);
    Korvi::installLogFormat();
    Korvi::Test::SoakClient client(parser.value(QStringLiteral("email")), parser.value(QStringLiteral("name")),
        parser.value(QStringLiteral("log")), parser.value(QStringLiteral("seed")).toUInt());
    return QGuiApplication::exec();
}
