#include "Providers/DemoScript.h"

#include "Core/Text.h"
#include "Providers/DemoArtifacts.h"
#include "Providers/DemoMedia.h"
#include "Providers/DemoTexts.h"
#include "Tools/Picture.h"

#include <algorithm>
#include <array>

namespace korvi::service {

using nlohmann::json;
using Phase = ProviderTool::Phase;

namespace {

// Steps of 15 ms, unless the service is told another pace.
constexpr int moment = 40;
constexpr int imageWork = 150;
constexpr int slowImageRound = 330;
constexpr int slowImageRounds = 4;
constexpr std::size_t artifactPart = 40; // code points

using Steps = std::vector<DemoStep>;

void add(Steps& steps, Steps more) {
    std::move(more.begin(), more.end(), std::back_inserter(steps));
}

DemoStep say(std::string_view text) {
    return DemoSpeech{PieceKind::text, std::string(text)};
}

DemoStep tool(Phase phase, std::string_view name, json data = json::object()) {
    return DemoTool{phase, std::string(name), [data = std::move(data)](DemoFiles&) { return data; }};
}

DemoStep toolEnd(std::string_view name, std::function<json(DemoFiles&)> data) {
    return DemoTool{Phase::end, std::string(name), std::move(data)};
}

// Web search

constexpr std::string_view searchIntroduction = "Сейчас поищу, что об этом пишут.";
constexpr std::string_view searchAnswer =
    "Байкал — самое глубокое озеро на Земле: до **1642 метров**. В нём около пятой части всей пресной воды планеты, "
    "не считая ледников.\n\nПоиск здесь ненастоящий: результаты встроены в демонстрацию, а адреса — настоящие.";

json searchResult(DemoFiles& files) {
    const std::string icon = files.picture("icon", 32, 32, "icon.png");
    const auto source = [](const char* url, int index) { return json{{"url", url}, {"index", index}}; };
    constexpr auto first = "https://ru.wikipedia.org/wiki/Байкал";
    constexpr auto second = "https://whc.unesco.org/en/list/754";
    constexpr auto third = "https://bigenc.ru/c/baikal-ozero-74d9a0";
    return {{"query", "озеро Байкал глубина"},
        {"answer",
            {{{"text", "Наибольшая глубина Байкала — 1642 метра[[1]](https://ru.wikipedia.org/wiki/Байкал)."},
                 {"sources", {source(first, 1)}}},
                {{"text", "С 1996 года озеро входит в список всемирного наследия[[2]](" + std::string(second) + ")."},
                    {"sources", {source(second, 2), source(third, 3)}}}}},
        {"results",
            {{{"title", "Байкал — Википедия"}, {"url", first},
                 {"content",
                     "Байкал — озеро тектонического происхождения в южной части Восточной Сибири, самое "
                     "глубокое озеро на планете."},
                 {"favicon", icon}},
                {{"title", "Lake Baikal"}, {"url", second},
                    {"content",
                        "Situated in south-east Siberia, the 3.15-million-ha Lake Baikal is the oldest and "
                        "deepest lake in the world."},
                    {"favicon", icon}},
                {{"title", "Байкал (озеро) — Большая российская энциклопедия"}, {"url", third},
                    {"content", "Бессточным озеро не является: из него вытекает Ангара."}, {"favicon", icon}}}},
        {"images",
            {{{"url", files.picture("Байкал зимой", 480, 320, "baikal-1.png")}, {"description", "Лёд у берега"}},
                {{"url", files.picture("Байкал, Ольхон", 480, 320, "baikal-2.png")}, {"description", "Ольхон"}},
                {{"url", files.picture("Ангара", 320, 480, "angara.png")}, {"description", "Исток Ангары"}}}},
        {"responseTime", 0.84}};
}

Steps searchSteps() {
    return {say(searchIntroduction), tool(Phase::start, "web_search"),
        tool(Phase::arguments, "web_search", {{"query", "озеро Байкал глубина"}}), DemoPause{moment * 2},
        toolEnd("web_search", searchResult), say(searchAnswer)};
}

constexpr std::string_view citations =
    "Скорость света в вакууме равна точно 299 792 458 метрам в секунду"
    "[[1]](https://ru.wikipedia.org/wiki/Скорость_света): через неё определён сам метр"
    "[[2]](https://www.bipm.org/en/si-base-units/metre). Впервые её оценил Оле Рёмер, наблюдая спутники Юпитера"
    "[1](https://ru.wikipedia.org/wiki/Скорость_света).\n\nИсточники этого ответа указаны прямо в тексте; приложение "
    "собирает их под ним. Это демонстрация, отвечает не модель.";

// Pictures

std::string imageWords(std::string_view question) {
    return firstWords(question, 200);
}

DemoStep imageEnd(const std::string& words) {
    return toolEnd("generateImage", [words](DemoFiles& files) {
        return json{{"type", "image"}, {"imageUrl", files.picture(words, 768, 512, "image.png")}};
    });
}

Steps imageSteps(std::string_view question) {
    return {say("Рисую по вашему описанию."), tool(Phase::start, "generateImage"), DemoPause{imageWork},
        imageEnd(imageWords(question)),
        say("\n\nЭту картинку нарисовала не модель, а сама служба: другие слова дают другой пейзаж.")};
}

Steps slowImageSteps(std::string_view question) {
    Steps steps{say("Эта картинка будет готова секунд через двадцать."), tool(Phase::start, "generateImage")};
    for (int i = 0; i < slowImageRounds; ++i)
        add(steps, {DemoPause{slowImageRound}, tool(Phase::progress, "generateImage")});
    add(steps, {imageEnd(imageWords(question)), say("\n\nГотово: медленная картинка тоже дошла.")});
    return steps;
}

Steps failedImageSteps() {
    return {say("Попробую нарисовать, но ничего не выйдет: так задумано."), tool(Phase::start, "generateImage"),
        DemoPause{imageWork},
        tool(Phase::end, "generateImage",
            {{"type", "text"}, {"text", "Не удалось создать изображение: это демонстрация сбоя. Попросите ещё раз."}})};
}

Steps videoSteps() {
    return {say("Вот короткое видео, четыре секунды без звука."), tool(Phase::start, "video"), DemoPause{imageWork},
        toolEnd("video",
            [](DemoFiles& files) {
                return json{{"type", "video"}, {"videoUrl", files.keep(demoVideo(), "korvi-demo.webm")}};
            }),
        say("Оно встроено в службу и отдаётся по частям, как настоящее.")};
}

// Documents

constexpr std::string_view listText = "Список покупок\r\n"
                                      "\r\n"
                                      "- хлеб\r\n"
                                      "- молоко\r\n"
                                      "- яблоки, 1 кг\r\n"
                                      "\r\n"
                                      "Составлено демонстрацией Korvi.\r\n";

DemoStep documentEnd(std::string_view bytes, const std::string& name, const std::string& type) {
    return toolEnd("createDocument", [bytes, name, type](DemoFiles& files) {
        return json{{"fileUrl", files.keep(bytes, name)}, {"filename", name}, {"mimeType", type}};
    });
}

Steps pdfSteps() {
    return {say("Готовлю документ."), tool(Phase::start, "createDocument"), DemoPause{imageWork},
        documentEnd(demoPdf(), "Демонстрация.pdf", "application/pdf"),
        say("Документ готов: его можно открыть и сохранить.")};
}

Steps textFileSteps() {
    return {say("Составляю текстовый файл."), tool(Phase::start, "createDocument"), DemoPause{moment},
        documentEnd(listText, "Список покупок.txt", "text/plain"), say("Файл готов: его можно открыть и сохранить.")};
}

// Artifacts

bool hasAnyOf(const std::string& lower, std::string_view words) {
    while (!words.empty()) {
        const auto word = words.substr(0, words.find(' '));
        words.remove_prefix(std::min(words.size(), word.size() + 1));
        if (lower.find(word) != std::string::npos)
            return true;
    }
    return false;
}

std::vector<std::string> partsOf(std::string_view text, std::size_t points) {
    std::vector<std::string> parts;
    std::size_t count = 0;
    for (const char c : text) {
        const bool begins = (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
        if (begins && count++ % points == 0)
            parts.emplace_back();
        parts.back() += c;
    }
    return parts;
}

Steps artifactSteps(const DemoArtifact& artifact) {
    Steps steps{say("Составляю документ «" + std::string(artifact.title) + "»: он открывается рядом с разговором."),
        tool(Phase::start, "artifact"), DemoPause{moment / 4},
        tool(Phase::arguments, "artifact", {{"id", artifact.id}, {"kind", artifact.kind}})};
    for (const std::string& part : partsOf(artifact.title, artifactPart / 4))
        add(steps, {tool(Phase::arguments, "artifact", {{"title", part}}), DemoPause{1}});
    for (const std::string& part : partsOf(artifact.text, artifactPart))
        add(steps, {tool(Phase::arguments, "artifact", {{"text", part}}), DemoPause{1}});
    add(steps,
        {tool(Phase::end, "artifact",
             {{"id", artifact.id}, {"title", artifact.title}, {"kind", artifact.kind}, {"text", artifact.text}}),
            say("Готово. Если попросить то же ещё раз, появится следующая версия.")});
    return steps;
}

Steps artifactSteps(const std::string& lower) {
    for (const DemoArtifact& artifact : demoArtifacts)
        if (hasAnyOf(lower, artifact.words))
            return artifactSteps(artifact);
    return artifactSteps(demoArtifacts.front());
}

Steps everything(std::string_view question) {
    Steps steps = searchSteps();
    for (Steps more : {imageSteps(question), artifactSteps(demoArtifacts[4]), pdfSteps()}) {
        steps.push_back(say("\n\n"));
        add(steps, std::move(more));
    }
    return steps;
}

struct DemoRequest {
    /// Beginnings of words.
    std::string_view words;
    Steps (*steps)(std::string_view question, const std::string& lower);
};

// The first row that fits wins.
constexpr std::array requests{
    DemoRequest{"инструмент", [](std::string_view question, const std::string&) { return everything(question); }},
    DemoRequest{"артефакт", [](std::string_view, const std::string& lower) { return artifactSteps(lower); }},
    DemoRequest{"нарису картинк изображен",
        [](std::string_view question, const std::string& lower) {
            if (hasAnyOf(lower, "ошибк неудач"))
                return failedImageSteps();
            return hasAnyOf(lower, "медленн") ? slowImageSteps(question) : imageSteps(question);
        }},
    DemoRequest{"видео", [](std::string_view, const std::string&) { return videoSteps(); }},
    DemoRequest{"документ pdf", [](std::string_view, const std::string&) { return pdfSteps(); }},
    DemoRequest{"файл", [](std::string_view, const std::string&) { return textFileSteps(); }},
    DemoRequest{"источник цитат", [](std::string_view, const std::string&) { return Steps{say(citations)}; }},
    DemoRequest{"найди поищи поиск", [](std::string_view, const std::string&) { return searchSteps(); }},
};

/// The texts: reasoning, an answer, and perhaps an error.
DemoScript spoken(std::string_view question) {
    DemoAnswer answer = demoAnswer(question);
    DemoScript script;
    script.slowness = answer.slowness;
    if (!answer.thinking.empty())
        script.steps.emplace_back(DemoSpeech{PieceKind::thinking, std::move(answer.thinking)});
    script.steps.emplace_back(DemoSpeech{PieceKind::text, std::move(answer.text)});
    if (!answer.error.empty())
        script.steps.emplace_back(DemoFailure{std::move(answer.error)});
    return script;
}

}

std::string DemoFiles::picture(const std::string& words, unsigned width, unsigned height, const std::string& name) {
    return keep(pngFrom(landscapeFor(words, width, height)), name);
}

std::string DemoFiles::keep(std::string_view bytes, const std::string& name) {
    return FileStore::storedAddress(files_.keep(bytes, userId_, chatId_, name, fileTypeOf(name, {}).mime));
}

DemoScript demoScript(std::string_view question) {
    const std::string lower = lowerCase(question);
    for (const DemoRequest& request : requests) {
        // Sorting is explained in words, whatever else the question says.
        if (!hasAnyOf(lower, request.words) || hasAnyOf(lower, "сортировк"))
            continue;
        DemoScript script{request.steps(question, lower), 1};
        if (hasAnyOf(lower, "эхо")) {
            const auto [head, tail] = demoEcho(question);
            script.steps.insert(script.steps.begin(), say(head));
            script.steps.push_back(say(tail));
        }
        return script;
    }
    return spoken(question);
}

}
