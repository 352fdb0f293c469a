#include "Chat/ClientFrame.h"

#include "Core/Json.h"
#include "Core/Limits.h"
#include "Core/Text.h"

namespace korvi::service {

using nlohmann::json;

namespace {

/// Why the content cannot be accepted; empty if it can.
std::string faultOf(const json& content) {
    if (!content.is_array() || content.empty())
        return "Сообщение пустое: введите текст или приложите файл.";
    if (content.size() > limits::messageParts)
        return "В сообщении слишком много вложений: можно не больше " + std::to_string(limits::messageParts) + ".";
    std::size_t text = 0;
    for (const json& part : content) {
        const auto type = stringAt(part, "type");
        const char* required = !type ? nullptr
            : *type == "text"        ? "text"
            : *type == "image_url"   ? "imageUrl"
            : *type == "file_url"    ? "fileUrl"
                                     : nullptr;
        const auto value = required ? stringAt(part, required) : std::nullopt;
        if (!value)
            return "Сообщение содержит часть неизвестного вида. Обновите приложение.";
        if (*type == "text")
            text += value->size();
    }
    if (text > limits::messageText)
        return "Сообщение слишком длинное: можно не больше " + std::to_string(limits::messageText / 1024) +
            " КБ текста. Сократите его или приложите файлом.";
    return {};
}

std::optional<long long> integerAt(const json& object, const char* key) {
    const auto found = object.find(key);
    if (found == object.end() || !found->is_number_integer())
        return std::nullopt;
    return found->get<long long>();
}

ClientFrame createFrom(const json& data) {
    const auto mode = stringAt(data, "mode");
    if (!mode || mode->empty() || mode->size() > 200)
        return BadFrame{0, "Не указана модель для нового чата."};
    const json content = data.value("content", json());
    if (auto fault = faultOf(content); !fault.empty())
        return BadFrame{0, fault};
    return CreateFrame{*mode, content, integerAt(data, "projectId")};
}

ClientFrame sendFrom(const json& data) {
    const auto chatId = integerAt(data, "chatId");
    if (!chatId)
        return BadFrame{0, "Не указан чат, в который отправлено сообщение."};
    const json content = data.value("content", json());
    if (auto fault = faultOf(content); !fault.empty())
        return BadFrame{*chatId, fault};
    return SendFrame{*chatId, content};
}

}

ClientFrame parseClientFrame(std::string_view text) {
    const auto frame = parseJson(text);
    if (!frame || !frame->is_object())
        return BadFrame{0, "Служба не разобрала запрос приложения: это не объект JSON."};
    const auto event = stringAt(*frame, "event");
    const json data = frame->value("data", json());
    if (!event || !data.is_object())
        return BadFrame{0, "Служба не разобрала запрос приложения: нет «event» или «data»."};
    if (*event == "create")
        return createFrom(data);
    if (*event == "send")
        return sendFrom(data);
    if (*event == "abort") {
        const auto chatId = integerAt(data, "chatId");
        return chatId ? ClientFrame(AbortFrame{*chatId})
                      : BadFrame{0, "Не указан чат, ответ в котором надо остановить."};
    }
    return BadFrame{0, "Служба не знает запроса «" + firstWords(*event, 40) + "». Обновите приложение или службу."};
}

std::string titleFor(const json& content) {
    std::string fallback;
    for (const json& part : content) {
        if (auto text = stringAt(part, "text"); text && part.value("type", "") == "text")
            if (auto title = firstWords(*text, limits::titleLength); !title.empty())
                return title;
        if (auto name = stringAt(part, "filename"); name && fallback.empty())
            fallback = firstWords(*name, limits::titleLength);
    }
    return fallback.empty() ? "Новый чат" : fallback;
}

}
