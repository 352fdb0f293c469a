#pragma once

#include "Chat/AnswerStream.h"
#include "Chat/ChatDirectory.h"
#include "Chat/MessageListModel.h"
#include "Chat/MessageLoader.h"
#include "Chat/ModelListModel.h"
#include "Chat/ModelSelection.h"
#include "Chat/SocketEvent.h"
#include "Scheduler.h"
#include "TaskScope.h"
#include "User.h"

#include <QHash>
#include <QProperty>

namespace Korvi {

class ChatService;
class Clock;
class NotificationCenter;
class Random;
class UsersService;

// The state of the open conversation and the order in which things happen; the only consumer of ChatService's
// events. While an answer is under way, the last message is that answer, with the role `ai`. The list of chats, the
// life of the answers and the choice of the model are parts of their own. Main thread only.
class ChatViewModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("owned by the application")
    Q_PROPERTY(Korvi::ChatListModel* chats READ chats CONSTANT)
    Q_PROPERTY(Korvi::MessageListModel* messages READ messages CONSTANT)
    Q_PROPERTY(Korvi::ModelListModel* models READ models CONSTANT)
    Q_PROPERTY(qint64 activeChatId READ activeChatId NOTIFY activeChatChanged) // -1 for a new, unsaved chat
    Q_PROPERTY(QString activeChatName READ activeChatName NOTIFY activeChatChanged)
    Q_PROPERTY(QString currentInput READ currentInput WRITE setCurrentInput NOTIFY currentInputChanged)
    Q_PROPERTY(bool canSend READ canSend NOTIFY canSendChanged)
    Q_PROPERTY(bool isGenerating READ isGenerating NOTIFY isGeneratingChanged BINDABLE bindableIsGenerating)
    // "Connecting...", "Connected", "Reconnecting..." or "Failed"
    Q_PROPERTY(
        QString connectionStatus READ connectionStatus NOTIFY connectionStatusChanged BINDABLE bindableConnectionStatus)
    Q_PROPERTY(bool isConnected READ isConnected NOTIFY connectionStatusChanged)
    Q_PROPERTY(QString selectedModel READ selectedModel NOTIFY selectedModelChanged)
    Q_PROPERTY(QString chatModelName READ chatModelName NOTIFY selectedModelChanged) // for the toolbar
    Q_PROPERTY(bool showingModelSelector READ showingModelSelector WRITE setShowingModelSelector NOTIFY
            showingModelSelectorChanged)
    Q_PROPERTY(
        QString pendingEditImageUrl READ pendingEditImageUrl NOTIFY pendingEditImageUrlChanged) // empty when absent
    Q_PROPERTY(QString generationError READ generationError NOTIFY generationErrorChanged BINDABLE
            bindableGenerationError) // empty when absent
    // The error ended the answer to the last question of the open conversation.
    Q_PROPERTY(bool canRetryError READ canRetryError NOTIFY canRetryErrorChanged BINDABLE bindableCanRetryError)
    Q_PROPERTY(QString generationHint READ generationHint NOTIFY generationHintChanged BINDABLE
            bindableGenerationHint) // empty when absent
    Q_PROPERTY(int contentUpdateTrigger READ contentUpdateTrigger NOTIFY contentUpdateTriggerChanged)

public:
    struct Dependencies {
        ChatService& chatService;
        UsersService& users;
        DataCacheManager& cache;
        Defaults& defaults;
        Scheduler& scheduler;
        Clock& clock;
        Random& random;
        NotificationCenter& notifications;
    };

    static constexpr auto hintDelay = std::chrono::seconds(60);
    static constexpr auto bannerTime = std::chrono::seconds(8);
    static constexpr auto draftDelay = std::chrono::seconds(1);

    explicit ChatViewModel(Dependencies dependencies, QObject* parent = nullptr);
    ~ChatViewModel() override;

    // Shows what is cached of that user, before any request; what was cached of another one is forgotten.
    void restore(const QString& userId);
    // The same user signs in anew.
    void sessionEnded() { m_stream.forgetEnds(); }
    // The user, the chat list, then the socket.
    Task<void> loadData();
    Task<void> prefetchRelatedData();
    Task<void> loadChats() { return m_directory.load(); }
    Q_INVOKABLE void connectToService();
    Q_INVOKABLE void reconnect();

    Q_INVOKABLE void createChat();
    Q_INVOKABLE void createChatInProject(qint64 projectId, const QString& projectName);
    Q_INVOKABLE void selectChat(qint64 chatId);
    Q_INVOKABLE void navigateToChat(qint64 chatId);
    Q_INVOKABLE void sendMessage(); // sends currentInput
    void sendMessage(QString text);
    Q_INVOKABLE void stopGeneration();
    Q_INVOKABLE void retryLastMessage();
    Q_INVOKABLE void deleteMessage(qint64 id); // from the screen only
    Q_INVOKABLE QString lastQuestion() const;  // empty without one
    Q_INVOKABLE void dismissError();

    Q_INVOKABLE void chooseModel(const QString& id);
    Q_INVOKABLE void setEditImage(const QString& url, const QString& prompt);
    Q_INVOKABLE void clearPendingEditImage();

    Q_INVOKABLE void toggleFavorite(qint64 chatId);
    Q_INVOKABLE void renameChat(qint64 chatId, const QString& newName);
    Q_INVOKABLE void deleteChat(qint64 chatId);

    // Nothing of the user who leaves stays on the screen or in memory.
    void reset();

    void handleSocketEvent(const SocketEvent& event);

    ChatListModel* chats() { return m_directory.model(); }
    MessageListModel* messages() { return &m_messages; }
    ModelListModel* models() { return &m_models; }
    ModelSelection& modelSelection() { return m_modelSelection; }
    const std::optional<User>& user() const { return m_user; }
    const std::optional<Chat>& activeChat() const { return m_activeChat; }
    qint64 activeChatId() const { return m_activeChat ? m_activeChat->id : -1; }
    QString activeChatName() const { return m_activeChat ? m_activeChat->name : QString(); }
    std::optional<qint64> activeProjectId() const { return m_activeProjectId; }
    std::optional<QString> activeProjectName() const { return m_activeProjectName; }
    QString currentInput() const { return m_currentInput; }
    void setCurrentInput(const QString& text);
    bool canSend() const;
    bool isGenerating() const { return m_isGenerating; }
    QString connectionStatus() const { return m_connectionStatus; }
    bool isConnected() const;
    QString selectedModel() const { return m_modelSelection.selectedModel(); }
    QString chatModelName() const { return m_modelSelection.chatModelName(); }
    bool showingModelSelector() const { return m_showingModelSelector; }
    void setShowingModelSelector(bool showing);
    QString pendingEditImageUrl() const { return m_pendingEditImageUrl.value_or(QString()); }
    QString generationError() const { return m_generationError; }
    bool canRetryError() const { return m_canRetryError; }
    QString generationHint() const { return m_generationHint; }
    int contentUpdateTrigger() const { return m_contentUpdateTrigger; }

    QBindable<bool> bindableIsGenerating() { return &m_isGenerating; }
    QBindable<QString> bindableConnectionStatus() { return &m_connectionStatus; }
    QBindable<QString> bindableGenerationError() { return &m_generationError; }
    QBindable<bool> bindableCanRetryError() { return &m_canRetryError; }
    QBindable<QString> bindableGenerationHint() { return &m_generationHint; }

signals:
    void activeChatChanged();
    void currentInputChanged();
    void canSendChanged();
    void isGeneratingChanged();
    void connectionStatusChanged();
    void selectedModelChanged();
    void showingModelSelectorChanged();
    void pendingEditImageUrlChanged();
    void generationErrorChanged();
    void canRetryErrorChanged();
    void generationHintChanged();
    void contentUpdateTriggerChanged();
    void contentScrolled(); // the text grew by enough to be followed
    void inputFocusRequested();

private:
    void send(const QString& text, const std::optional<QString>& editImageUrl);
    void connected();
    void created(const Chat& chat);
    void failed(const SocketEvent::Error& error);
    void streamEnded();
    void organizationChanged();
    Task<void> fetchCurrentUser();
    void messagesLoaded(qint64 chatId, const std::vector<ChatMessage>& messages);
    void messagesFailed(qint64 chatId, bool isGone);
    void show(std::vector<ChatMessage> messages);
    void openConversation(std::optional<Chat> chat);
    void setActiveChat(std::optional<Chat> chat);
    void setPendingEditImage(std::optional<QString> url);
    void selectModel(const QString& id);
    void answerStateChanged();
    void takeBackQuestion(const QString& text);
    void showError(const QString& message);
    void saveDraft();
    void saveLeftInputs();

    Dependencies m_dependencies;
    std::optional<User> m_user;
    ChatDirectory m_directory;
    MessageListModel m_messages;
    MessageLoader m_loader;
    AnswerStream m_stream;
    ModelSelection m_modelSelection;
    ModelListModel m_models;
    std::optional<Chat> m_activeChat;
    std::optional<qint64> m_activeProjectId; // of the chat about to be created
    std::optional<QString> m_activeProjectName;
    QString m_currentInput;
    QHash<qint64, QString> m_leftInputs; // what was being written in a chat when a new one was begun
    std::optional<QString> m_pendingEditImageUrl;
    bool m_showingModelSelector = false;
    int m_contentUpdateTrigger = 0;
    qint64 m_loadedChatId = -1; // the open chat, once its messages have come from the service
    Timer m_hintTimer;
    Timer m_bannerTimer;
    Timer m_draftTimer;

    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(
        ChatViewModel, bool, m_isGenerating, false, &ChatViewModel::isGeneratingChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(ChatViewModel, QString, m_connectionStatus, QStringLiteral("Connecting..."),
        &ChatViewModel::connectionStatusChanged)
    Q_OBJECT_BINDABLE_PROPERTY(ChatViewModel, QString, m_generationError, &ChatViewModel::generationErrorChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(
        ChatViewModel, bool, m_canRetryError, false, &ChatViewModel::canRetryErrorChanged)
    Q_OBJECT_BINDABLE_PROPERTY(ChatViewModel, QString, m_generationHint, &ChatViewModel::generationHintChanged)

    TaskScope m_scope; // last: its tasks end before anything they use
};

}
