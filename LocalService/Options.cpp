#include "Options.h"

#include "Core/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string_view>

namespace korvi::service {

namespace {

std::string environment(const char* name) {
    // Read once at start-up, before there is a second thread.
    const char* value = std::getenv(name); // NOLINT(concurrency-mt-unsafe)
    return value ? value : "";
}

template <class Number>
Number numberFrom(std::string_view option, const std::string& text, Number maximum) {
    Number value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc() || end != text.data() + text.size() || value < 0 || value > maximum)
        throw OptionsError(
            std::string(option) + ": нужно число от 0 до " + std::to_string(maximum) + ", а не «" + text + "»");
    return value;
}

std::string keyFromFile(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        throw OptionsError("Не удаётся прочитать файл с ключом: " + file);
    return trimmed(std::string(std::istreambuf_iterator<char>(stream), {}));
}

void setModelForMode(Options& options, const std::string& text) {
    const auto equals = text.find('=');
    if (equals == std::string::npos || equals == 0 || equals + 1 == text.size())
        throw OptionsError("--model-for: нужно РЕЖИМ=МОДЕЛЬ, а не «" + text + "»");
    options.modelForMode[text.substr(0, equals)] = text.substr(equals + 1);
}

void setPublicUrl(Options& options, const std::string& url) {
    if (!url.starts_with("http://") && !url.starts_with("https://"))
        throw OptionsError("--public-url: нужен адрес с http:// или https://, а не «" + url + "»");
    options.publicUrl = url;
    while (options.publicUrl.ends_with('/'))
        options.publicUrl.pop_back();
}

void setProvider(Options& options, const std::string& name) {
    if (name == "demo")
        options.provider = ProviderKind::demo;
    else if (name == "openai")
        options.provider = ProviderKind::openai;
    else
        throw OptionsError("--provider: есть demo и openai, а «" + name + "» нет");
}

struct Option {
    std::string_view name;
    /// What stands for the value in the help; empty: the option takes none.
    std::string_view value;
    std::string_view help;
    void (*apply)(Options&, const std::string&);
};

constexpr std::array table{
    Option{"--host", "АДРЕС", "адрес, на котором ждать подключений (127.0.0.1)",
        [](Options& o, const std::string& v) { o.host = v; }},
    Option{"--port", "ПОРТ", "порт; 0 — любой свободный (0)",
        [](Options& o, const std::string& v) { o.port = static_cast<std::uint16_t>(numberFrom("--port", v, 65535)); }},
    Option{"--data", "ПАПКА", "где хранить данные ($XDG_DATA_HOME/korvi-service)",
        [](Options& o, const std::string& v) { o.data = v; }},
    Option{"--provider", "ИМЯ", "кто отвечает: demo — встроенные тексты, openai — модель (demo)", setProvider},
    Option{"--demo-delay-ms", "ЧИСЛО", "пауза между частями ответа demo, мс (15)",
        [](Options& o, const std::string& v) {
            o.demoDelay = std::chrono::milliseconds(numberFrom("--demo-delay-ms", v, 60000));
        }},
    Option{"--openai-url", "URL", "адрес API, до «/chat/completions» (http://127.0.0.1:11434/v1)",
        [](Options& o, const std::string& v) { o.openaiUrl = v; }},
    Option{"--openai-key-file", "ФАЙЛ", "файл с ключом API; ключ можно дать и в переменной KORVI_OPENAI_KEY",
        [](Options& o, const std::string& v) { o.openaiKey = keyFromFile(v); }},
    Option{"--model", "МОДЕЛЬ", "модель для всех чатов; без неё имя модели — режим чата",
        [](Options& o, const std::string& v) { o.model = v; }},
    Option{"--model-for", "РЕЖИМ=МОДЕЛЬ", "модель для чатов одного режима; можно повторять", setModelForMode},
    Option{"--model-idle-s", "ЧИСЛО", "сколько секунд ждать от модели следующей части ответа (180)",
        [](Options& o, const std::string& v) {
            o.modelIdle = std::chrono::seconds(numberFrom("--model-idle-s", v, 86400));
        }},
    Option{"--no-model-titles", "", "не просить модель о названиях чатов: названием будут первые слова вопроса",
        [](Options& o, const std::string&) { o.modelTitles = false; }},
    Option{"--no-tools", "", "не предлагать модели инструментов: документов, поиска, картинок",
        [](Options& o, const std::string&) { o.modelTools = false; }},
    Option{"--search-url", "URL", "поиск для модели: адрес, совместимый с SearXNG (без него поиска нет)",
        [](Options& o, const std::string& v) { o.searchUrl = v; }},
    Option{"--image-model", "МОДЕЛЬ", "модель, которая рисует, на том же сервере (без неё картинок нет)",
        [](Options& o, const std::string& v) { o.imageModel = v; }},
    Option{"--public-url", "URL",
        "адрес службы для приложений, если он не такой, как у неё самой (перед ней TLS-сервер)", setPublicUrl},
    Option{"--allow-plain-http", "", "разрешить http:// не только для своего компьютера: ключ и текст пойдут открыто",
        [](Options& o, const std::string&) { o.allowPlainHttp = true; }},
    Option{"--dev-providers", "", "для разработки: вход с вымышленными учётными записями Google, Яндекса, VK и Apple",
        [](Options& o, const std::string&) { o.devProviders = true; }},
    Option{"--help", "", "эта справка", [](Options& o, const std::string&) { o.help = true; }},
    Option{"--version", "", "версия", [](Options& o, const std::string&) { o.version = true; }},
};

std::filesystem::path defaultData() {
    if (const std::string data = environment("XDG_DATA_HOME"); !data.empty() && data.front() == '/')
        return std::filesystem::path(data) / "korvi-service";
    const std::string home = environment("HOME");
    if (home.empty())
        throw OptionsError("Не задана ни папка --data, ни переменная HOME");
    return std::filesystem::path(home) / ".local/share/korvi-service";
}

}

Options parseOptions(const std::vector<std::string>& arguments) {
    Options options;
    options.openaiKey = environment("KORVI_OPENAI_KEY");
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const auto equals = arguments[i].find('=');
        const std::string name = arguments[i].substr(0, equals);
        const auto* option =
            std::find_if(table.begin(), table.end(), [&](const Option& each) { return each.name == name; });
        if (option == table.end())
            throw OptionsError("Неизвестный ключ «" + arguments[i] + "». Список ключей: korvi-service --help");
        std::string value;
        if (option->value.empty()) {
            if (equals != std::string::npos)
                throw OptionsError(name + " не принимает значения");
        } else if (equals != std::string::npos) {
            value = arguments[i].substr(equals + 1);
        } else if (++i < arguments.size()) {
            value = arguments[i];
        } else {
            throw OptionsError(name + ": нет значения (" + std::string(option->value) + ")");
        }
        option->apply(options, value);
    }
    if (options.devProviders && !options.isLoopback())
        throw OptionsError("--dev-providers пускает каждого: только вместе с адресом этого компьютера (--host)");
    if (options.data.empty() && !options.help && !options.version)
        options.data = defaultData();
    return options;
}

std::string helpText() {
    std::string text = "korvi-service — служба, с которой разговаривает приложение Korvi.\n\n"
                       "Запуск: korvi-service [ключи]\n\n";
    for (const Option& option : table) {
        const std::string head =
            "  " + std::string(option.name) + (option.value.empty() ? "" : " ") + std::string(option.value);
        const std::size_t width = utf16Length(head);
        text += head + std::string(width < 32 ? 32 - width : 1, ' ') + std::string(option.help) + "\n";
    }
    return text + "\nКод входа печатается здесь же, в консоли службы.\n";
}

}
