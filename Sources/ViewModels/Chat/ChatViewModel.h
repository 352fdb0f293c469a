#pragma once

#include "Chat/ChatListModel.h"
#include "Chat/GenerationQueue.h"
#include "Chat/MessageListModel.h"
#include "Chat/SocketEvent.h"
#include "Scheduler.h"
#include "TaskScope.h"

#include <QProperty>

namespace Korvi {

class ChatService;
class Clock;
class NotificationCenter;
class Random;

// The state of the open conversation and the order in which things happen; the only consumer of ChatService's
// events. While an answer is under way, the last message is that answer, with the role `ai`. Main thread only.
class ChatViewModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("owned by the application")
    Q_PROPERTY(Korvi::ChatListModel* chats READ chats CONSTANT)
    Q_PROPERTY(Korvi::MessageListModel* messages READ messages CONSTANT)
    Q_PROPERTY(qint64 activeChatId READ activeChatId NOTIFY activeChatChanged) // -1 for a new, unsaved chat
    Q_PROPERTY(QString activeChatName READ activeChatName NOTIFY activeChatChanged)
    Q_PROPERTY(QString currentInput READ currentInput WRITE setCurrentInput NOTIFY currentInputChanged)
    Q_PROPERTY(bool canSend READ canSend NOTIFY currentInputChanged)
    Q_PROPERTY(bool isGenerating READ isGenerating NOTIFY isGeneratingChanged BINDABLE bindableIsGenerating)
    // "Connecting...", "Connected", "Reconnecting..." or "Failed"
    Q_PROPERTY(
        QString connectionStatus READ connectionStatus NOTIFY connectionStatusChanged BINDABLE bindableConnectionStatus)
    Q_PROPERTY(bool isConnected READ isConnected NOTIFY connectionStatusChanged)
    Q_PROPERTY(QString generationError READ generationError NOTIFY generationErrorChanged BINDABLE
            bindableGenerationError) // empty when absent
    Q_PROPERTY(QString generationHint READ generationHint NOTIFY generationHintChanged BINDABLE
            bindableGenerationHint) // empty when absent
    Q_PROPERTY(int contentUpdateTrigger READ contentUpdateTrigger NOTIFY contentUpdateTriggerChanged)

public:
    struct Dependencies {
        ChatService& chatService;
        Scheduler& scheduler;
        Clock& clock;
        Random& random;
        NotificationCenter& notifications;
    };

    static constexpr auto streamFlushInterval = std::chrono::milliseconds(80);
    static constexpr auto hintDelay = std::chrono::seconds(60);
    static constexpr auto reconnectTimeout = std::chrono::seconds(120);
    static constexpr auto bannerTime = std::chrono::seconds(8);

    explicit ChatViewModel(Dependencies dependencies, QObject* parent = nullptr);
    ~ChatViewModel() override;

    // The chat list, then the socket.
    Task<void> loadData();
    Task<void> loadChats();
    Q_INVOKABLE void connectToService();
    Q_INVOKABLE void reconnect();

    Q_INVOKABLE void createChat();
    Q_INVOKABLE void selectChat(qint64 chatId);
    Q_INVOKABLE void sendMessage(); // sends currentInput
    Q_INVOKABLE void stopGeneration();
    Q_INVOKABLE void retryLastMessage();
    Q_INVOKABLE void dismissError();
    // Forgets everything of the user who leaves.
    void reset();

    void handleSocketEvent(const SocketEvent& event);

    ChatListModel* chats() { return &m_chats; }
    MessageListModel* messages() { return &m_messages; }
    const std::optional<Chat>& activeChat() const { return m_activeChat; }
    qint64 activeChatId() const { return m_activeChat ? m_activeChat->id : -1; }
    QString activeChatName() const { return m_activeChat ? m_activeChat->name : QString(); }
    QString currentInput() const { return m_currentInput; }
    void setCurrentInput(const QString& text);
    bool canSend() const;
    bool isGenerating() const { return m_isGenerating; }
    QString connectionStatus() const { return m_connectionStatus; }
    bool isConnected() const;
    QString generationError() const { return m_generationError; }
    QString generationHint() const { return m_generationHint; }
    int contentUpdateTrigger() const { return m_contentUpdateTrigger; }

    QBindable<bool> bindableIsGenerating() { return &m_isGenerating; }
    QBindable<QString> bindableConnectionStatus() { return &m_connectionStatus; }
    QBindable<QString> bindableGenerationError() { return &m_generationError; }
    QBindable<QString> bindableGenerationHint() { return &m_generationHint; }

signals:
    void activeChatChanged();
    void currentInputChanged();
    void isGeneratingChanged();
    void connectionStatusChanged();
    void generationErrorChanged();
    void generationHintChanged();
    void contentUpdateTriggerChanged();
    void contentScrolled(); // the text grew by enough to be followed
    void inputFocusRequested();

private:
    void send(QString text);
    void created(const Chat& chat);
    void connected();
    void failed(const SocketEvent::Error& error);
    void streamEnded();
    void receivePiece(const QString& piece, AnswerFold::Kind kind);
    void flushPieces();
    bool foldInto(Generation& generation, ChatMessage& answer); // whether it changed the answer
    void finish(const Generation* generation);
    void park();
    bool unpark(qint64 chatId);
    Task<void> loadMessages(qint64 chatId);
    void openConversation(std::optional<Chat> chat, std::vector<ChatMessage> messages);
    void refreshGenerating();
    void showError(const QString& message);
    void restartHintTimer();

    Dependencies m_dependencies;
    ChatListModel m_chats;
    MessageListModel m_messages;
    std::optional<Chat> m_activeChat;
    QString m_currentInput;
    QString m_selectedModel;
    GenerationQueue m_generations;
    int m_contentUpdateTrigger = 0;
    Timer m_flushTimer; // active while pieces keep coming
    Timer m_hintTimer;
    Timer m_reconnectTimer;
    Timer m_bannerTimer;

    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(
        ChatViewModel, bool, m_isGenerating, false, &ChatViewModel::isGeneratingChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(ChatViewModel, QString, m_connectionStatus, QStringLiteral("Connecting..."),
        &ChatViewModel::connectionStatusChanged)
    Q_OBJECT_BINDABLE_PROPERTY(ChatViewModel, QString, m_generationError, &ChatViewModel::generationErrorChanged)
    Q_OBJECT_BINDABLE_PROPERTY(ChatViewModel, QString, m_generationHint, &ChatViewModel::generationHintChanged)

    TaskScope m_scope; // last: its tasks end before anything they use
};

}
