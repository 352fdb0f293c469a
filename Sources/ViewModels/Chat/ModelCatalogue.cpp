#include "Chat/ModelCatalogue.h"

#include <algorithm>
#include <array>

namespace Korvi::ModelCatalogue {

namespace {

constexpr ModelInfo model(
    QStringView id, QStringView name, QStringView description, QStringView iconName, bool isDefault = false) {
    return {id, name, name, description, iconName, isDefault};
}

constexpr std::array models{
    model(u"aiplus", u"Авто", u"Лучшая модель под каждую задачу", u"sparkles", true),
    model(u"gpt-4", u"ChatGPT 5.4", u"Вместе с Dalle, файлами, поиском в интернете и озвучкой", u"brain"),
    model(u"claude-sonnet", u"Claude Sonnet 4.6", u"Продвинутая модель", u"doc.text"),
    model(u"claude-opus", u"Claude Opus 4.7", u"Самая продвинутая модель", u"doc.text"),
    model(u"gemini-flash", u"Gemini Flash 3", u"Базовая модель от Google", u"bolt.fill"),
    model(u"gemini-pro", u"Gemini Pro 3.1", u"Самая продвинутая модель от Google", u"star.fill"),
    model(u"deepseek-chat", u"DeepSeek V4", u"Быстрая и экономичная модель нового поколения", u"cpu"),
    model(u"deepseek-pro", u"DeepSeek V4 Pro", u"Продвинутая модель для сложных задач", u"cpu.fill"),
    model(u"grok-2", u"Grok 4.1 Fast", u"Быстрая модель с vision, thinking, поиском в интернете и X", u"xmark.circle"),
    model(u"grok-4.20", u"Grok 4.2", u"Флагман xAI: 2M контекст, reasoning, поиск в X, генерация изображений",
        u"xmark.circle"),
};

struct ProviderRule {
    enum class Test { equals, begins, contains };
    Test test;
    QStringView part;
    ModelProvider provider;
};

// The first that fits.
constexpr std::array rules{
    ProviderRule{ProviderRule::Test::equals, u"aiplus", ModelProvider::automatic},
    ProviderRule{ProviderRule::Test::begins, u"gpt", ModelProvider::openai},
    ProviderRule{ProviderRule::Test::begins, u"chatgpt", ModelProvider::openai},
    ProviderRule{ProviderRule::Test::begins, u"claude", ModelProvider::claude},
    ProviderRule{ProviderRule::Test::begins, u"deepseek", ModelProvider::deepseek},
    ProviderRule{ProviderRule::Test::begins, u"gemini", ModelProvider::gemini},
    ProviderRule{ProviderRule::Test::contains, u"grok", ModelProvider::grok},
};

bool fits(const ProviderRule& rule, QStringView id) {
    switch (rule.test) {
    case ProviderRule::Test::equals: return id == rule.part;
    case ProviderRule::Test::begins: return id.startsWith(rule.part);
    case ProviderRule::Test::contains: return id.contains(rule.part);
    }
    return false;
}

}

std::span<const ModelInfo> allModels() {
    return models;
}

const ModelInfo* find(QStringView id) {
    const auto it = std::find_if(models.begin(), models.end(), [id](const ModelInfo& info) { return info.id == id; });
    return it == models.end() ? nullptr : &*it;
}

ModelProvider provider(QStringView id) {
    const auto rule =
        std::find_if(rules.begin(), rules.end(), [id](const ProviderRule& each) { return fits(each, id); });
    return rule == rules.end() ? ModelProvider::openai : rule->provider;
}

QStringView title(ModelProvider provider) {
    switch (provider) {
    case ModelProvider::automatic: return u"Авто";
    case ModelProvider::openai: return u"OpenAI";
    case ModelProvider::claude: return u"Claude";
    case ModelProvider::deepseek: return u"DeepSeek";
    case ModelProvider::gemini: return u"Gemini";
    case ModelProvider::grok: return u"Grok";
    }
    return {};
}

}
