#include "Chat/AnswerEngine.h"

#include "Chat/AnswerContent.h"
#include "Chat/Frames.h"
#include "Core/Json.h"
#include "Core/Limits.h"
#include "Core/Log.h"
#include "Core/Time.h"

#include <algorithm>

namespace korvi::service {

namespace {

constexpr auto interruptedMessage =
    "Ответ прерван: сервис был перезапущен. Текст до этого места сохранён — отправьте сообщение ещё раз.";
constexpr auto expiryPeriod = std::chrono::seconds(10);

long long nowMillis() {
    return toMillis(WallClock::now());
}

long long replayHorizon() {
    return nowMillis() - std::chrono::milliseconds(limits::replayLife).count();
}

}

AnswerEngine::AnswerEngine(
    asio::io_context& io, ChatStore& store, FileStore& files, Provider& provider, ChatTitles& titles)
    : io_(io)
    , store_(store)
    , files_(files)
    , provider_(provider)
    , titles_(titles)
    , storeTimer_(io)
    , expiryTimer_(io) {}

void AnswerEngine::recover() {
    store_.closeInterrupted(interruptedMessage);
    for (auto& answer : store_.undelivered(replayHorizon())) {
        auto& session = sessionFor(answer.sessionId, answer.userId);
        session.outbox->add(std::make_shared<Answer>(std::move(answer)));
    }
    scheduleExpiry();
}

void AnswerEngine::shutdown() {
    storeTimer_.cancel();
    expiryTimer_.cancel();
    while (!running_.empty())
        finish(running_.begin()->first, AnswerState::interrupted, interruptedMessage);
    for (auto& [id, session] : sessions_)
        if (session.connection)
            session.connection->close(CloseReason::shutdown);
}

// Connections

AnswerEngine::Session& AnswerEngine::sessionFor(const std::string& sessionId, const std::string& userId) {
    auto& session = sessions_[sessionId];
    if (!session.outbox) {
        session.userId = userId;
        session.outbox = std::make_shared<Outbox>(static_cast<Outbox::Host&>(*this));
    }
    return session;
}

bool AnswerEngine::mayConnect(const std::string& userId) const {
    const auto open = std::count_if(sessions_.begin(), sessions_.end(),
        [&](const auto& entry) { return entry.second.connection && entry.second.userId == userId; });
    return static_cast<std::size_t>(open) < limits::socketsPerUser;
}

std::shared_ptr<Outbox> AnswerEngine::attach(const SessionRow& row, Connection& connection) {
    auto& session = sessionFor(row.id, row.userId);
    if (session.connection)
        session.connection->close(CloseReason::replaced);
    session.connection = &connection;
    session.outbox->dropExpired(replayHorizon());
    return session.outbox;
}

void AnswerEngine::detach(const std::string& sessionId, const Connection& connection) {
    const auto found = sessions_.find(sessionId);
    if (found == sessions_.end() || found->second.connection != &connection)
        return;
    found->second.connection = nullptr;
    if (found->second.outbox->empty())
        sessions_.erase(found);
    else
        scheduleExpiry();
}

void AnswerEngine::wake(const std::string& sessionId) {
    const auto found = sessions_.find(sessionId);
    if (found != sessions_.end() && found->second.connection)
        found->second.connection->wake();
}

void AnswerEngine::scheduleExpiry() {
    const bool waiting = std::any_of(sessions_.begin(), sessions_.end(),
        [](const auto& entry) { return !entry.second.connection && !entry.second.outbox->empty(); });
    if (!waiting || expiryScheduled_)
        return;
    expiryScheduled_ = true;
    expiryTimer_.expires_after(expiryPeriod);
    expiryTimer_.async_wait([this](const boost::system::error_code& error) {
        if (error)
            return;
        expiryScheduled_ = false;
        expire();
    });
}

void AnswerEngine::expire() {
    try {
        for (auto entry = sessions_.begin(); entry != sessions_.end();) {
            auto& session = entry->second;
            if (!session.connection)
                session.outbox->dropExpired(replayHorizon());
            entry = !session.connection && session.outbox->empty() ? sessions_.erase(entry) : std::next(entry);
        }
    } catch (const StoreError&) {
        // Dropped from memory; the next start marks the row.
    }
    scheduleExpiry();
}

// Requests

void AnswerEngine::handleFrame(const SessionRow& session, std::string_view text) {
    const ClientFrame frame = parseClientFrame(text);
    try {
        std::visit([&](const auto& each) { perform(session, each); }, frame);
    } catch (const StoreError& error) {
        const auto* send = std::get_if<SendFrame>(&frame);
        perform(session, BadFrame{send ? send->chatId : 0, error.what()});
    }
}

void AnswerEngine::perform(const SessionRow& row, const BadFrame& frame) {
    // The refusal takes its turn: in the middle of another answer it would be taken for the end of that one.
    auto& session = sessionFor(row.id, row.userId);
    if (session.outbox->notices() >= limits::noticesPerSession) {
        if (session.connection)
            session.connection->close(CloseReason::flooding);
        return;
    }
    auto notice = std::make_shared<Answer>();
    notice->userId = row.userId;
    notice->sessionId = row.id;
    notice->chatId = frame.chatId;
    notice->state = AnswerState::failed;
    notice->error = frame.message;
    notice->endedAt = nowMillis();
    session.outbox->add(std::move(notice));
    wake(row.id);
}

void AnswerEngine::perform(const SessionRow& session, const CreateFrame& frame) {
    if (!hasRoomFor(session.userId))
        return perform(session, BadFrame{0, "Слишком много ответов сразу. Дождитесь окончания одного из них."});
    ChatRow draft;
    draft.userId = session.userId;
    draft.name = titleFor(frame.content);
    draft.mode = frame.mode;
    draft.projectId = frame.projectId;
    const auto answer = answerFor(session);
    answer->createsChat = true;
    const auto content = files_.stored(frame.content, session.userId);
    const ChatRow chat = store_.beginChat(draft, *answer, content);
    files_.attach(content, chat.id);
    start(answer, chat.mode);
    // At once: the client reads the list again when the answer has ended.
    titles_.begin(chat, frame.content);
}

void AnswerEngine::perform(const SessionRow& session, const SendFrame& frame) {
    const auto chat = store_.chat(session.userId, frame.chatId);
    if (!chat)
        return perform(session, BadFrame{frame.chatId, "Чат не найден: возможно, он был удалён."});
    if (!hasRoomFor(session.userId))
        return perform(
            session, BadFrame{frame.chatId, "Слишком много ответов сразу. Дождитесь окончания одного из них."});
    const auto answer = answerFor(session);
    answer->chatId = chat->id;
    const auto content = files_.stored(frame.content, session.userId);
    store_.beginAnswer(*answer, content);
    files_.attach(content, chat->id);
    start(answer, chat->mode);
}

void AnswerEngine::perform(const SessionRow& session, const AbortFrame& frame) {
    std::vector<long long> wanted;
    for (const auto& [id, running] : running_)
        if (running.answer->chatId == frame.chatId && running.answer->userId == session.userId)
            wanted.push_back(id);
    for (const long long id : wanted)
        finish(id, AnswerState::aborted, {});
}

bool AnswerEngine::hasRoomFor(const std::string& userId) const {
    const auto own = std::count_if(
        running_.begin(), running_.end(), [&](const auto& entry) { return entry.second.answer->userId == userId; });
    return running_.size() < limits::answersInAll && static_cast<std::size_t>(own) < limits::answersPerUser;
}

std::shared_ptr<Answer> AnswerEngine::answerFor(const SessionRow& session) {
    auto answer = std::make_shared<Answer>();
    answer->userId = session.userId;
    answer->sessionId = session.id;
    return answer;
}

void AnswerEngine::start(const std::shared_ptr<Answer>& answer, const std::string& mode) {
    ProviderRequest request{mode, {}, answer->userId, answer->chatId};
    for (auto& message : store_.history(answer->chatId))
        request.history.push_back({message.role == "user" ? "user" : "assistant", std::move(message.content)});

    sessionFor(answer->sessionId, answer->userId).outbox->add(answer);
    auto& running = running_[answer->messageId];
    running.answer = answer;
    running.stream = provider_.start(
        request, [this, id = answer->messageId](ProviderEvent event) { receive(id, std::move(event)); });
    wake(answer->sessionId);
}

// The life of an answer

void AnswerEngine::receive(long long messageId, ProviderEvent event) {
    const auto found = running_.find(messageId);
    if (found == running_.end())
        return;
    if (auto* delta = std::get_if<ProviderDelta>(&event)) {
        append(found->second, delta->kind, std::move(delta->text));
    } else if (auto* tool = std::get_if<ProviderTool>(&event)) {
        try {
            append(found->second, std::move(*tool));
        } catch (const StoreError& error) {
            return finish(messageId, AnswerState::failed, error.what());
        }
    } else if (const auto* failed = std::get_if<ProviderFailed>(&event)) {
        finish(messageId, AnswerState::failed, failed->message);
    } else {
        finish(messageId, AnswerState::done, {});
    }
    if (const auto still = running_.find(messageId); still != running_.end() && still->second.size > limits::answer)
        finish(messageId, AnswerState::failed,
            "Ответ слишком длинный и остановлен. Текст до этого места сохранён — попросите продолжить.");
}

void AnswerEngine::append(Running& running, PieceKind kind, std::string text) {
    // A NUL would end the text for half of those who read it.
    std::erase(text, '\0');
    if (kind == PieceKind::text && !text.empty() && std::exchange(running.nextIsParagraph, false) && text[0] != '\n')
        text.insert(0, "\n\n");
    running.size += text.size();
    keepPieces(running, running.cutter.add(kind, text));
}

void AnswerEngine::append(Running& running, ProviderTool tool) {
    using Phase = ProviderTool::Phase;
    Answer& answer = *running.answer;
    // What was said before the tool stands before it.
    std::vector<Piece> pieces = running.cutter.finish();
    std::string frame;
    switch (tool.phase) {
    case Phase::start: frame = frames::toolStart(tool.tool); break;
    case Phase::progress: frame = frames::toolProgress(tool.tool); break;
    case Phase::arguments:
        if (const auto id = tool.tool == "artifact" ? stringAt(tool.data, "id") : std::nullopt)
            tool.data["version"] = store_.nextArtifactVersion(answer.chatId, *id);
        frame = frames::toolArguments(tool.tool, tool.data);
        break;
    case Phase::end:
        if (tool.tool == "artifact")
            tool.data["version"] = store_.addArtifact(answer.chatId,
                {tool.data.value("id", ""), 0, tool.data.value("title", ""), tool.data.value("kind", ""),
                    tool.data.value("text", "")});
        // The picture joins the text.
        if (const auto url = tool.tool == "generateImage" ? stringAt(tool.data, "imageUrl") : std::nullopt)
            running.cutter.addShown(imageMarkdown(files_.publishedText(*url)));
        frame = frames::toolEnd(tool.tool, tool.data);
        break;
    }
    running.size += frame.size();
    pieces.push_back({PieceKind::tool, std::move(frame)});
    keepPieces(running, std::move(pieces));
    if (tool.phase == Phase::end)
        running.nextIsParagraph = endsWithText(answer.pieces);
}

void AnswerEngine::keepPieces(Running& running, std::vector<Piece> pieces) {
    if (pieces.empty())
        return;
    std::move(pieces.begin(), pieces.end(), std::back_inserter(running.answer->pieces));
    scheduleStore(*running.answer);
}

void AnswerEngine::finish(long long messageId, AnswerState state, const std::string& error) {
    auto node = running_.extract(messageId);
    if (!node)
        return;
    unstored_.erase(messageId);
    Running& running = node.mapped();
    Answer& answer = *running.answer;
    running.stream.reset();
    for (auto& piece : running.cutter.finish())
        answer.pieces.push_back(std::move(piece));
    answer.state = state;
    answer.error = error;
    answer.endedAt = nowMillis();
    try {
        store_.endAnswer(answer);
    } catch (const StoreError& failure) {
        // Nobody may see what is not stored. The next start makes a message of what is.
        answer.pieces.resize(answer.stored);
        answer.state = AnswerState::failed;
        answer.error = failure.what();
    }
    wake(answer.sessionId);
    scheduleExpiry();
}

void AnswerEngine::scheduleStore(Answer& answer) {
    unstored_.insert(answer.messageId);
    if (storeScheduled_)
        return;
    storeScheduled_ = true;
    // Right away after a pause, else together with what comes in the meantime.
    storeTimer_.expires_at(std::max(lastStore_ + limits::storeInterval, std::chrono::steady_clock::now()));
    storeTimer_.async_wait([this](const boost::system::error_code& error) {
        if (!error)
            storeNow();
    });
}

void AnswerEngine::storeNow() {
    storeScheduled_ = false;
    lastStore_ = std::chrono::steady_clock::now();
    std::vector<Answer*> answers;
    for (const long long id : std::exchange(unstored_, {}))
        if (const auto found = running_.find(id); found != running_.end())
            answers.push_back(found->second.answer.get());
    try {
        store_.storePieces(answers);
    } catch (const StoreError& error) {
        for (const Answer* answer : answers)
            finish(answer->messageId, AnswerState::failed, error.what());
        return;
    }
    for (const Answer* answer : answers)
        wake(answer->sessionId);
}

// What the outboxes ask and tell

std::string AnswerEngine::createFrame(const Answer& answer) {
    const auto chat = store_.chat(answer.userId, answer.chatId);
    return chat ? frames::create(chat->toJson()) : std::string();
}

// That something has arrived need not be stored: after a restart it is sent once more. No reason to end a connection.
void AnswerEngine::confirmed(const Answer& answer) {
    try {
        if (answer.messageId != 0)
            store_.storeConfirmation(answer);
    } catch (const StoreError& error) {
        logLine(error.what());
    }
}

void AnswerEngine::delivered(const Answer& answer) {
    try {
        if (answer.messageId != 0)
            store_.forgetPieces(answer);
    } catch (const StoreError& error) {
        logLine(error.what());
    }
}

// What has been removed

void AnswerEngine::chatRemoved(const std::string& userId, long long chatId) {
    titles_.cancel(chatId);
    for (auto entry = running_.begin(); entry != running_.end();) {
        const auto answer = entry->second.answer;
        if (answer->userId != userId || answer->chatId != chatId) {
            ++entry;
            continue;
        }
        // Its rows are gone; whoever waits for it still gets its end.
        unstored_.erase(entry->first);
        entry = running_.erase(entry);
        answer->pieces.resize(answer->stored);
        answer->messageId = 0;
        answer->state = AnswerState::aborted;
        answer->endedAt = nowMillis();
        wake(answer->sessionId);
    }
}

void AnswerEngine::sessionRemoved(const std::string& sessionId) {
    const auto found = sessions_.find(sessionId);
    if (found == sessions_.end())
        return;
    // Its answers go on and are stored; nobody can come back for their frames.
    Connection* const connection = found->second.connection;
    const auto outbox = std::move(found->second.outbox);
    sessions_.erase(found);
    if (connection)
        connection->close(CloseReason::signedOut);
}

void AnswerEngine::userRemoved(const std::string& userId) {
    titles_.cancelAll(userId);
    for (auto entry = running_.begin(); entry != running_.end();) {
        const bool own = entry->second.answer->userId == userId;
        if (own)
            unstored_.erase(entry->first);
        entry = own ? running_.erase(entry) : std::next(entry);
    }
    std::vector<std::string> ids;
    for (const auto& [id, session] : sessions_)
        if (session.userId == userId)
            ids.push_back(id);
    for (const auto& id : ids)
        sessionRemoved(id);
}

}
