#pragma once

#include "ChatFileAttachment.h"
#include "ChatMessage.h"

#include <QHash>

namespace Korvi {

class Clock;
class Random;

// What a message is made of, as pure functions.
namespace MessageComposition {

bool isAnswer(const ChatMessage& message); // of any of the two roles that answers have
std::optional<int> rowOfLastAnswer(const std::vector<ChatMessage>& messages);

struct Turn {
    ChatMessage question;
    ChatMessage answer; // one empty text block
};

// The blocks of a question: the image to be edited or else the first that is attached, the other files, then the text.
// What is not at the service yet has its local address.
std::vector<MessageContent> contentOf(const QString& text, const std::optional<QString>& editImageUrl,
    const std::vector<ChatFileAttachment>& attachments = {});
// Puts other addresses in the place of those that images and files have. Whether any did.
bool relocate(ChatMessage& message, const QHash<QString, QString>& places);

// The two messages that stand in the list before the service has said anything. Their ids are local: the service's
// own come with the next reload.
Turn begin(std::vector<MessageContent> content, qint64 chatId, const Clock& clock, Random& random);

// "image", "video", "search" or "text": what an answer to this is likely to be.
QString detectGenerationType(const QString& text, bool hasImage);

// The service may return the user's messages without their files: they are taken from the messages at hand that have
// the same text, the last of them from the last one. What never came to the service is kept as well, to be sent again.
std::vector<ChatMessage> mergeFileAttachments(const std::vector<ChatMessage>& local, std::vector<ChatMessage> server);

// All text, or all reasoning, in one.
QString joinedText(const ChatMessage& message, QStringView separator = {});
QString joinedThinking(const ChatMessage& message);

// Takes away what says that a tool is at work, an artifact of which nothing has come included. Whether anything did.
bool removePlaceholders(ChatMessage& message);

// The last row with that question, if its answer is behind it.
std::optional<std::ptrdiff_t> rowOfQuestion(const std::vector<ChatMessage>& messages, const QString& text);

// Whether the user has sent these words with it. A service may strip what surrounds them.
bool asks(const ChatMessage& message, const QString& text);

// How often the user has sent these words.
std::ptrdiff_t timesAsked(const std::vector<ChatMessage>& messages, const QString& text);

// The answer to these words when they were sent for that time, the first being 1. Null while there is none.
const ChatMessage* answerTo(const std::vector<ChatMessage>& messages, const QString& text, std::ptrdiff_t time);

// The first text of the last message of the user; absent without one.
std::optional<QString> lastQuestion(const std::vector<ChatMessage>& messages);

}

}
