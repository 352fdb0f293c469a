#pragma once

#include "Chat/AnswerStream.h"
#include "Chat/ArtifactSelection.h"
#include "Chat/ChatDirectory.h"
#include "Chat/ChatRecovery.h"
#include "Chat/ComposerAttachments.h"
#include "Chat/ComposerInput.h"
#include "Chat/ConnectionState.h"
#include "Chat/ConversationLoader.h"
#include "Chat/MessageListModel.h"
#include "Chat/ModelListModel.h"
#include "Chat/ModelSelection.h"
#include "Chat/QuestionUploads.h"
#include "Chat/SocketEventRouter.h"
#include "Scheduler.h"
#include "TaskScope.h"
#include "User.h"

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
    // The list could not be loaded; it will be with the next connection.
    Q_PROPERTY(
        bool areChatsOutdated READ areChatsOutdated NOTIFY areChatsOutdatedChanged BINDABLE bindableAreChatsOutdated)
    Q_PROPERTY(Korvi::MessageListModel* messages READ messages CONSTANT)
    Q_PROPERTY(Korvi::ModelListModel* models READ models CONSTANT)
    Q_PROPERTY(qint64 activeChatId READ activeChatId NOTIFY activeChatChanged) // -1 for a new, unsaved chat
    Q_PROPERTY(QString activeChatName READ activeChatName NOTIFY activeChatChanged)
    // The open chat's messages are those of the service, not only what was cached. A new chat has none to come.
    Q_PROPERTY(bool areMessagesLoaded READ areMessagesLoaded NOTIFY areMessagesLoadedChanged BINDABLE
            bindableAreMessagesLoaded)
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
    // What the tools of the open conversation's answer are at; empty or false without one.
    Q_PROPERTY(QString currentToolStatus READ currentToolStatus NOTIFY toolsChanged)
    Q_PROPERTY(bool showImageSkeleton READ showImageSkeleton NOTIFY toolsChanged)
    Q_PROPERTY(bool hasGeneratingPlaceholder READ hasGeneratingPlaceholder NOTIFY toolsChanged)
    Q_PROPERTY(Korvi::WebSearchState webSearchState READ webSearchState NOTIFY toolsChanged)
    Q_PROPERTY(Korvi::ArtifactSelection* artifacts READ artifacts CONSTANT)
    Q_PROPERTY(Korvi::ComposerAttachments* attachments READ attachments CONSTANT)
    Q_PROPERTY(Korvi::AttachmentListModel* pendingFileAttachments READ pendingFileAttachments CONSTANT)
    Q_PROPERTY(bool hasAttachments READ hasAttachments NOTIFY hasAttachmentsChanged)
    Q_PROPERTY(bool isRecovering READ isRecovering NOTIFY isRecoveringChanged BINDABLE bindableIsRecovering)
    // An answer that came while the application was not looked at; -1 and empty without one.
    Q_PROPERTY(qint64 completedInOtherChatId READ completedInOtherChatId NOTIFY completedInOtherChatChanged)
    Q_PROPERTY(QString completedInOtherChatName READ completedInOtherChatName NOTIFY completedInOtherChatChanged)
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
        ComposerAttachments& attachments;
    };

    static constexpr auto hintDelay = std::chrono::seconds(60);
    static constexpr auto bannerTime = std::chrono::seconds(8);

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
    Q_INVOKABLE void connectToService() { m_connection.connectToService(); }
    Q_INVOKABLE void reconnect() { m_connection.reconnect(); }

    Q_INVOKABLE void createChat();
    Q_INVOKABLE void createChatInProject(qint64 projectId, const QString& projectName);
    Q_INVOKABLE void selectChat(qint64 chatId);
    Q_INVOKABLE void navigateToChat(qint64 chatId);
    Q_INVOKABLE void sendMessage(); // sends currentInput
    void sendMessage(QString text);
    // The attachment of that local address, which has not gone up with its message, in one of its own. Not while an answer
    // is under way.
    Q_INVOKABLE void sendSeparately(const QUrl& localURL);
    Q_INVOKABLE void stopGeneration();
    Q_INVOKABLE void retryLastMessage();
    Q_INVOKABLE void deleteMessage(qint64 id); // from the screen only
    Q_INVOKABLE QString lastQuestion() const;  // empty without one
    Q_INVOKABLE void dismissError();

    Q_INVOKABLE void chooseModel(const QString& id);
    Q_INVOKABLE void setEditImage(const QString& url, const QString& prompt);
    Q_INVOKABLE void clearPendingEditImage() { replaceEditImage(std::nullopt); }

    // The application has come back to the front, or the machine from its sleep: what became of the answer?
    void recoverFromBackground() {
        m_recovery.recover([this] { return activeChatId(); });
    }

    Q_INVOKABLE void toggleFavorite(qint64 chatId);
    Q_INVOKABLE void renameChat(qint64 chatId, const QString& newName);
    Q_INVOKABLE void deleteChat(qint64 chatId);

    // Nothing of the user who leaves stays on the screen or in memory.
    void reset();

    ChatListModel* chats() { return m_directory.model(); }
    bool areChatsOutdated() const { return m_directory.isOutdated(); }
    MessageListModel* messages() { return &m_messages; }
    ModelListModel* models() { return &m_models; }
    ModelSelection& modelSelection() { return m_modelSelection; }
    const std::optional<User>& user() const { return m_user; }
    const std::optional<Chat>& activeChat() const { return m_activeChat; }
    qint64 activeChatId() const { return m_activeChat ? m_activeChat->id : -1; }
    QString activeChatName() const { return m_activeChat ? m_activeChat->name : QString(); }
    std::optional<qint64> activeProjectId() const { return m_activeProjectId; }
    std::optional<QString> activeProjectName() const { return m_activeProjectName; }
    bool areMessagesLoaded() const { return m_loader.areMessagesLoaded(); }
    QString currentInput() const { return m_input.text(); }
    void setCurrentInput(const QString& text) { m_input.setText(text); }
    bool canSend() const;
    bool isGenerating() const { return m_isGenerating; }
    QString connectionStatus() const { return m_connection.status(); }
    bool isConnected() const { return m_connection.isConnected(); }
    QString selectedModel() const { return m_modelSelection.selectedModel(); }
    QString chatModelName() const { return m_modelSelection.chatModelName(); }
    bool showingModelSelector() const { return m_showingModelSelector; }
    void setShowingModelSelector(bool showing);
    QString pendingEditImageUrl() const { return m_input.editImageUrl().value_or(QString()); }
    QString generationError() const { return m_generationError; }
    bool canRetryError() const { return m_canRetryError; }
    QString generationHint() const { return m_generationHint; }
    QString currentToolStatus() const { return m_tools.currentToolStatus; }
    bool showImageSkeleton() const { return m_tools.showImageSkeleton; }
    bool hasGeneratingPlaceholder() const { return m_tools.hasGeneratingPlaceholder; }
    WebSearchState webSearchState() const { return m_tools.webSearchState; }
    ArtifactSelection* artifacts() { return &m_artifacts; }
    ComposerAttachments* attachments() { return &m_dependencies.attachments; }
    AttachmentListModel* pendingFileAttachments() { return m_dependencies.attachments.pending(); }
    bool hasAttachments() const;
    bool isRecovering() const { return m_recovery.isRecovering(); }
    qint64 completedInOtherChatId() const { return completedInOtherChat().chatId; }
    QString completedInOtherChatName() const { return completedInOtherChat().chatName; }
    int contentUpdateTrigger() const { return m_contentUpdateTrigger; }

    QBindable<bool> bindableAreChatsOutdated() { return m_directory.bindableIsOutdated(); }
    QBindable<bool> bindableAreMessagesLoaded() { return m_loader.bindableAreMessagesLoaded(); }
    QBindable<bool> bindableIsRecovering() { return m_recovery.bindableIsRecovering(); }
    QBindable<bool> bindableIsGenerating() { return &m_isGenerating; }
    QBindable<QString> bindableConnectionStatus() { return m_connection.bindableStatus(); }
    QBindable<QString> bindableGenerationError() { return &m_generationError; }
    QBindable<bool> bindableCanRetryError() { return &m_canRetryError; }
    QBindable<QString> bindableGenerationHint() { return &m_generationHint; }

signals:
    void activeChatChanged();
    void areChatsOutdatedChanged();
    void areMessagesLoadedChanged();
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
    void toolsChanged();
    void hasAttachmentsChanged();
    void isRecoveringChanged();
    void completedInOtherChatChanged();
    // For those who tell of answers outside of the window.
    void longTaskBegan(qint64 chatId, const QString& type, const QString& chatName);
    void answerReady(qint64 chatId, const QString& chatName, const QDateTime& askedAt);
    void generationEnded(); // of the answer that was asked for last
    void contentScrolled(); // the text grew by enough to be followed
    void inputFocusRequested();

private:
    void send(const QString& text, const std::optional<QString>& editImageUrl,
        std::vector<ChatFileAttachment> attachments = {});
    void replaceEditImage(const std::optional<QString>& url); // the file of a pasted one that goes is removed
    void toolStateChanged();
    ChatRecovery::Completed completedInOtherChat() const {
        return m_recovery.completedInOtherChat().value_or(ChatRecovery::Completed());
    }
    QString nameOf(qint64 chatId) const;
    void closeConversation();
    void organizationChanged();
    Task<void> fetchCurrentUser();
    void openConversation(std::optional<Chat> chat);
    void setActiveChat(std::optional<Chat> chat);
    void selectModel(const QString& id);
    void answerStateChanged();
    void takeBackQuestion(const QString& text);
    void showError(const QString& message, bool canRetry = false);

    Dependencies m_dependencies;
    std::optional<User> m_user;
    ConnectionState m_connection;
    ChatDirectory m_directory;
    MessageListModel m_messages;
    AnswerStream m_stream;
    ConversationLoader m_loader;
    ChatRecovery m_recovery;
    SocketEventRouter m_router;
    ModelSelection m_modelSelection;
    ModelListModel m_models;
    ComposerInput m_input;
    ArtifactSelection m_artifacts;
    QuestionUploads m_uploads;
    ToolState m_tools; // as they are shown
    std::optional<Chat> m_activeChat;
    std::optional<qint64> m_activeProjectId; // of the chat about to be created
    std::optional<QString> m_activeProjectName;
    bool m_showingModelSelector = false;
    int m_contentUpdateTrigger = 0;
    Timer m_hintTimer;
    Timer m_bannerTimer;

    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(
        ChatViewModel, bool, m_isGenerating, false, &ChatViewModel::isGeneratingChanged)
    Q_OBJECT_BINDABLE_PROPERTY(ChatViewModel, QString, m_generationError, &ChatViewModel::generationErrorChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(
        ChatViewModel, bool, m_canRetryError, false, &ChatViewModel::canRetryErrorChanged)
    Q_OBJECT_BINDABLE_PROPERTY(ChatViewModel, QString, m_generationHint, &ChatViewModel::generationHintChanged)

    TaskScope m_scope; // last: its tasks end before anything they use
};

}
