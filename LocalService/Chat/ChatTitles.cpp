#include "Chat/ChatTitles.h"

#include "Core/Json.h"
#include "Core/Limits.h"
#include "Core/Log.h"
#include "Core/Text.h"

#include <algorithm>
#include <array>

namespace korvi::service {

namespace {

constexpr std::string_view instruction =
    "Ты придумываешь названия разговоров. Тебе дают первое сообщение; отвечать на него не нужно. Напиши только "
    "название: на языке сообщения, не больше пяти слов, без кавычек, без разметки и без точки в конце.";

// What models put round a title although they are asked not to. Marks may belong to it: C#, .NET, «Войны и мира».
constexpr std::array<std::string_view, 5> leading{"#", "-", "*", "`", " "};
constexpr std::array<std::string_view, 4> trailing{"*", "`", ".", " "};
struct Quotes {
    std::string_view open;
    std::string_view close;
};
constexpr std::array quotes{
    Quotes{"«", "»"}, Quotes{"\"", "\""}, Quotes{"“", "”"}, Quotes{"„", "“"}, Quotes{"'", "'"}, Quotes{"‘", "’"}};
constexpr std::array<std::string_view, 3> labels{"название", "заголовок", "title"};

bool isQuoted(std::string_view text, const Quotes& each) {
    if (text.size() < each.open.size() + each.close.size() || !text.starts_with(each.open) ||
        !text.ends_with(each.close))
        return false;
    // As a whole: «Война» и «мир» is not.
    const auto inner = text.substr(each.open.size(), text.size() - each.open.size() - each.close.size());
    return inner.find(each.open) == std::string_view::npos && inner.find(each.close) == std::string_view::npos;
}

std::string_view withoutMarks(std::string_view text) {
    for (std::size_t before = text.size() + 1; text.size() < before;) {
        before = text.size();
        for (const auto mark : leading)
            if (text.starts_with(mark))
                text.remove_prefix(mark.size());
        for (const auto mark : trailing)
            if (text.ends_with(mark))
                text.remove_suffix(mark.size());
        for (const Quotes& each : quotes) {
            if (isQuoted(text, each)) {
                text.remove_prefix(each.open.size());
                text.remove_suffix(each.close.size());
            }
        }
    }
    return text;
}

/// Models that think aloud do so before the answer.
std::string_view withoutThinking(std::string_view text) {
    constexpr std::string_view end = "</think>";
    const auto found = text.rfind(end);
    return found == std::string_view::npos ? text : text.substr(found + end.size());
}

std::string textOf(const nlohmann::json& question) {
    std::string text;
    for (const auto& part : question)
        if (stringAt(part, "type") == "text")
            text += stringAt(part, "text").value_or("");
    return text;
}

nlohmann::json textPart(std::string_view text) {
    return nlohmann::json::array({{{"type", "text"}, {"text", text}}});
}

}

ChatTitles::ChatTitles(asio::io_context& io, ChatStore& store, Provider* provider)
    : io_(io)
    , store_(store)
    , provider_(provider) {}

void ChatTitles::begin(const ChatRow& chat, const nlohmann::json& question) {
    const std::string asked = firstWords(textOf(question), limits::titleQuestion);
    if (!provider_ || asked.empty() || requests_.size() >= limits::titlesAtOnce)
        return;
    Request& request = requests_[chat.id];
    request.chat = chat;
    request.limit = std::make_unique<asio::steady_timer>(io_, limits::titleTime);
    request.limit->async_wait([this, id = chat.id](const boost::system::error_code& error) {
        if (!error)
            cancel(id);
    });
    ProviderRequest prompt{chat.mode,
        {{"system", textPart(instruction)}, {"user", textPart("Первое сообщение разговора:\n\n" + asked)}}, {}, 0};
    request.stream = provider_->start(prompt, [this, id = chat.id](const ProviderEvent& event) { receive(id, event); });
}

void ChatTitles::cancel(long long chatId) {
    requests_.erase(chatId);
}

void ChatTitles::cancelAll(const std::string& userId) {
    std::erase_if(requests_, [&](const auto& entry) { return entry.second.chat.userId == userId; });
}

void ChatTitles::receive(long long chatId, const ProviderEvent& event) {
    const auto found = requests_.find(chatId);
    if (found == requests_.end())
        return;
    if (const auto* delta = std::get_if<ProviderDelta>(&event)) {
        if (delta->kind == PieceKind::text)
            found->second.text += delta->text;
        // That is an essay.
        if (found->second.text.size() > limits::titleAnswer)
            cancel(chatId);
        return;
    }
    if (std::holds_alternative<ProviderFinished>(event))
        store(found->second);
    cancel(chatId);
}

void ChatTitles::store(const Request& request) {
    const auto title = titleFromModel(request.text);
    if (!title)
        return;
    try {
        store_.rename(request.chat.userId, request.chat.id, *title);
    } catch (const StoreError&) {
        logLine("название чата не сохранено: база данных недоступна для записи.");
    }
}

std::optional<std::string> titleFromModel(std::string_view said) {
    std::string_view rest = withoutThinking(said);
    std::string line;
    std::string_view title;
    // «Вот название:» is followed by it.
    while (!rest.empty() && (title.empty() || title.ends_with(":"))) {
        const std::string_view raw = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(rest.size(), raw.size() + 1));
        line = firstWords(raw, raw.size());
        title = withoutMarks(line);
    }
    if (const auto colon = title.find(':'); colon != std::string_view::npos) {
        const std::string label = lowerCase(withoutMarks(title.substr(0, colon)));
        if (std::find(labels.begin(), labels.end(), label) != labels.end())
            title = withoutMarks(title.substr(colon + 1));
    }
    // The mark of an unfinished thought, or a whole answer.
    if (title.starts_with("<") || title.ends_with(":") || utf16Length(title) > limits::titleLength)
        return std::nullopt;
    const bool hasLetter = std::any_of(title.begin(), title.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte >= 0x80U || (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') ||
            (byte >= 'a' && byte <= 'z');
    });
    return hasLetter ? std::optional(std::string(title)) : std::nullopt;
}

}
