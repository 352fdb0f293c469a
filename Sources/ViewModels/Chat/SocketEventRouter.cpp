#include "Chat/SocketEventRouter.h"

#include "Chat/AnswerStream.h"
#include "Chat/ChatDirectory.h"
#include "Chat/ConversationLoader.h"
#include "Match.h"
#include "NotificationCenter.h"

#include <QLoggingCategory>

namespace Korvi {

using namespace Qt::Literals;

Q_LOGGING_CATEGORY(lcEvents, "korvi.chat", QtInfoMsg)

SocketEventRouter::SocketEventRouter(Dependencies dependencies)
    : m_dependencies(dependencies) {}

void SocketEventRouter::handle(const SocketEvent& event) {
    AnswerStream& stream = m_dependencies.stream;
    // Any of these proves the stream alive.
    const bool isOfStream = !std::holds_alternative<SocketEvent::Connected>(event.value) &&
        !std::holds_alternative<SocketEvent::Disconnected>(event.value) &&
        !std::holds_alternative<SocketEvent::Error>(event.value) &&
        !std::holds_alternative<SocketEvent::Message>(event.value);
    if (isOfStream)
        stream.heard();
    match(
        event.value,
        [&](const SocketEvent::TextChunk& chunk) { stream.receive(chunk.content, AnswerFold::Kind::text); },
        [&](const SocketEvent::ThinkingChunk& chunk) { stream.receive(chunk.content, AnswerFold::Kind::thinking); },
        [this](const SocketEvent::Creation& creation) { created(creation.chat); },
        [this](const SocketEvent::Connected&) { connected(); },
        [this](const SocketEvent::Error& error) { answerFailed(error); },
        [this](const SocketEvent::StreamEnd&) { answerEnded(); },
        [&](const SocketEvent::ToolStart& start) {
            stream.receive({ToolFrame::Kind::start, start.tool, std::nullopt});
        },
        [&](const SocketEvent::ArtifactChunk& chunk) {
            stream.receive({ToolFrame::Kind::args, chunk.tool, chunk.args});
        },
        [&](const SocketEvent::ToolEnd& end) {
            stream.receive({ToolFrame::Kind::end, end.tool, end.content});
        },
        [&](const SocketEvent::Disconnected&) { stream.disconnected(); }, [](const SocketEvent::Message&) {});
}

void SocketEventRouter::connected() {
    m_dependencies.stream.connected();
    m_dependencies.loader.connected();
    if (m_dependencies.directory.isOutdated())
        emit chatsOutdated();
}

void SocketEventRouter::created(const Chat& chat) {
    AnswerStream& stream = m_dependencies.stream;
    m_dependencies.directory.add(chat);
    switch (stream.created(chat.id)) {
    case AnswerStream::Owner::open: emit openChatCreated(chat); break;
    case AnswerStream::Owner::parked:
        qCInfo(lcEvents) << "💾 [ChatViewModel] Chat created while user is in another chat, saved to background:"
                         << chat.id;
        // It may have been opened from the list before this was told.
        if (m_dependencies.loader.openChatId() == chat.id && !stream.isGenerating())
            stream.unpark(chat.id);
        break;
    case AnswerStream::Owner::none: break;
    }
    if (chat.projectId)
        emit m_dependencies.notifications.projectChatCreated(chat);
}

void SocketEventRouter::answerFailed(const SocketEvent::Error& error) {
    const auto ending = m_dependencies.stream.fail(error.chatId);
    const qint64 chatId = ending ? ending->chatId : error.chatId.value_or(-1);
    const bool isOpen = ending ? ending->wasOpen : chatId == m_dependencies.loader.openChatId();
    const Chat* chat = isOpen ? nullptr : m_dependencies.directory.find(chatId);
    // It is told in the open conversation: of another one it says so.
    const QString message = chat ? u"«%1»: %2"_s.arg(chat->name, error.message) : error.message;
    emit failed(message, ending && ending->wasOpen && !m_dependencies.stream.isGenerating());
}

void SocketEventRouter::answerEnded() {
    const auto ending = m_dependencies.stream.end();
    if (!ending) {
        // An answer that nobody waited for any more: the open chat may be its own.
        if (const qint64 open = m_dependencies.loader.openChatId(); open > 0)
            m_dependencies.loader.load(open);
        return;
    }
    emit m_dependencies.notifications.didCompleteAIResponse();
    if (ending->createdChat) // it has got its title by now
        emit chatsOutdated();
}

}
