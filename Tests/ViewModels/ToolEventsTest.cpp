#include "Chat/ToolEvents.h"
#include "Chat/AnswerFold.h"
#include "Chat/ArtifactFinder.h"
#include "Chat/InlineCitations.h"
#include "Chat/MessageComposition.h"
#include "Chat/ToolNames.h"
#include "FakeRandom.h"

#include <QRegularExpression>

#include <gmock/gmock.h>

#include <random>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using testing::ElementsAre;
using Kind = ToolFrame::Kind;
using Wait = ToolEvents::Wait;
using Text = MessageContent::Text;

QJsonObject json(const char* text) {
    return QJsonDocument::fromJson(text).object();
}

// "text(a) generating(image) search(q)"
QString told(const ChatMessage& answer) {
    QStringList parts;
    for (const MessageContent& block : *answer.content) {
        if (const auto* text = block.as<Text>())
            parts.append(u"text("_s + text->text + u')');
        else if (const auto* kind = block.as<MessageContent::Generating>())
            parts.append(u"generating("_s + kind->kind + u')');
        else if (const auto* query = block.as<MessageContent::SearchInProgress>())
            parts.append(u"searching("_s + query->query + u')');
        else if (const auto* search = block.as<WebSearchContent>())
            parts.append(u"search("_s + search->query.value_or(QString()) + u')');
        else if (const auto* video = block.as<MessageContent::Video>())
            parts.append(u"video("_s + video->url + u')');
        else if (const auto* file = block.as<MessageContent::File>())
            parts.append(u"file("_s + file->url + u' ' + file->filename + u' ' + file->mimetype + u')');
        else if (const auto* artifact = block.as<Artifact>())
            parts.append(u"artifact("_s + artifact->id.left(5) + u' ' + artifact->kind + u' ' + artifact->title + u' ' +
                artifact->text.toString() + u')');
    }
    return parts.join(u' ');
}

struct Answer {
    ChatMessage message;
    ToolWork work;
    AnswerFold fold;
    FakeRandom random;
    ToolEvents::Outcome outcome;

    Answer() {
        message.role = ChatMessage::Role::ai;
        message.content = std::vector<MessageContent>{{Text{}}};
    }
    void take(Kind kind, const QString& tool, std::optional<QJsonObject> content = std::nullopt) {
        outcome = ToolEvents::take(work, message, {kind, tool, std::move(content)}, random);
        ToolEvents::applyArtifact(work, message);
    }
    void start(const QString& tool) { take(Kind::start, tool); }
    void args(const QString& tool, const char* args) { take(Kind::args, tool, json(args)); }
    void end(const QString& tool, const char* content) { take(Kind::end, tool, json(content)); }
    void text(const QString& piece) {
        fold.fold(*message.content, {piece}, AnswerFold::Kind::text);
        ToolEvents::repairPlaceholder(work, message);
    }
};

TEST(ToolNames, TellTheClassTheTaskAndTheStatus) {
    struct Row {
        const char* tool;
        ToolClass toolClass;
        const char* tracked; // "" for nothing
        const char* status;
    };
    const Row rows[]{
        {"artifact", ToolClass::artifact, "", ""},
        {"Artifact", ToolClass::artifact, "", ""},
        {"web-search", ToolClass::webSearch, "search", ""},
        {"browser", ToolClass::webSearch, "", ""},
        {"Browser", ToolClass::other, "", "Starting Browser..."},
        {"Search_Web", ToolClass::webSearch, "search", ""},
        {"searchFiles", ToolClass::webSearch, "search", ""},
        {"Tavily", ToolClass::webSearch, "", ""},
        {"researcher", ToolClass::other, "search", "Starting researcher..."},
        {"image_search", ToolClass::image, "search", "Generating image..."},
        {"web_search_images", ToolClass::webSearch, "search", ""},
        {"DALLE3", ToolClass::image, "image", "Generating image..."},
        {"drawing", ToolClass::image, "", "Generating image..."},
        {"animateImage", ToolClass::video, "image", "Создание видео..."},
        {"video", ToolClass::video, "video", "Создание видео..."},
        {"video_maker", ToolClass::other, "video", "Starting video_maker..."},
        {"create-document", ToolClass::document, "file", "Создаю файл..."},
        {"python", ToolClass::other, "", "Starting python..."},
    };
    for (const Row& row : rows) {
        const QString tool = QString::fromUtf8(row.tool);
        EXPECT_EQ(ToolNames::classOf(tool), row.toolClass) << row.tool;
        EXPECT_EQ(ToolNames::trackedAs(tool).value_or(QString()).toStdString(), row.tracked) << row.tool;
        EXPECT_EQ(ToolNames::startStatus(tool).toStdString(), row.status) << row.tool;
    }
    const std::tuple<const char*, const char*, const char*> work[]{
        {"dalle", R"({"prompt":"кот"})", "Generating image: \"кот\"..."},
        {"dalle", R"({"prompt":1})", "Generating image..."},
        {"browser", R"({"query":"кот"})", "Searching web: \"кот\"..."},
        {"browser", "{}", "Searching web..."},
        {"python", R"({"code":"1"})", "Analyzing data with Python..."},
        {"weather", R"({"city":"Омск"})", "Using weather: Омск..."},
        {"weather", R"({"city":"01234567890123456789012345678901234567890123456789"})", "Using weather..."},
        {"weather", R"({"at":7})", "Using weather..."},
    };
    for (const auto& [tool, args, status] : work)
        EXPECT_EQ(ToolNames::workStatus(QString::fromUtf8(tool), json(args)).toStdString(), status);
}

TEST(ToolEvents, AnImageTakesThePlaceOfItsPlaceholder) {
    Answer answer;
    answer.text(u"Рисую."_s);
    answer.start(u"dalle3"_s);
    EXPECT_EQ(answer.outcome.wait, Wait::forImage);
    EXPECT_EQ(answer.outcome.tracked, u"image"_s);
    answer.args(u"dalle3"_s, "{}"); // the socket adds it
    EXPECT_EQ(told(answer.message), u"text(Рисую.) generating(image)"_s);
    EXPECT_TRUE(answer.work.showImageSkeleton);
    answer.end(u"dalle3"_s, R"({"loading":true})");
    EXPECT_EQ(answer.outcome.wait, Wait::forImage);
    EXPECT_EQ(told(answer.message), u"text(Рисую.) generating(image)"_s);
    EXPECT_EQ(answer.work.currentToolStatus, u"Generating image..."_s);
    answer.text(u"Рисую"_s); // however short, it is there
    EXPECT_EQ(told(answer.message), u"text(Рисую.) generating(image)"_s);
    answer.end(u"dalle3"_s, R"({"imageUrl":"u"})");
    EXPECT_EQ(answer.outcome.wait, Wait::noLonger);
    answer.end(u"dalle3"_s, R"({"imageUrl":"u"})"); // told twice
    EXPECT_EQ(told(answer.message), u"text(Рисую.\n\n![image](u))"_s);
    EXPECT_FALSE(answer.work.showImageSkeleton);
    EXPECT_EQ(answer.work.currentToolStatus, QString());
}

TEST(ToolEvents, WhatAToolEndsWithStandsInTheAnswer) {
    struct Row {
        const char* what;
        const char* tool;
        const char* result;
        const char* told;
        Wait wait;
    };
    const Row rows[]{
        {"a nested address", "dalle", R"({"content":{"imageUrl":"u"}})", "text(\n\n![image](u))", Wait::noLonger},
        {"ready Markdown", "dalle", R"x({"text":"![x](u)"})x", "text(\n\n![x](u))", Wait::forEnd},
        {"a failed image", "dalle", R"({"text":"Нельзя"})", "text() text(Нельзя)", Wait::forEnd},
        {"an image tool without a word", "dalle", "{}", "text()", Wait::forEnd},
        {"a video", "video", R"({"videoUrl":"u"})", "text() video(u)", Wait::none},
        {"a failed video keeps its place until the end", "video", R"({"videoUrl":"","text":"Нельзя"})",
            "text() generating(video) text(Нельзя)", Wait::none},
        {"a file", "document", R"({"file_url":"u","filename":"n","mime_type":"t"})", "text() file(u n t)", Wait::none},
        {"a file of which little is told", "document", R"({"fileUrl":"u"})",
            "text() file(u file application/octet-stream)", Wait::none},
        {"no file", "document", R"({"text":"x"})", "text()", Wait::none},
        {"a search", "web-search", R"({"results":[]})", "text() search()", Wait::none},
        {"a search of the wrong shape", "web-search", R"({"results":1})", "text() search()", Wait::none},
        {"an unknown tool", "python", R"({"text":"x"})", "text()", Wait::none},
    };
    for (const Row& row : rows) {
        Answer answer;
        answer.start(QString::fromUtf8(row.tool));
        answer.end(QString::fromUtf8(row.tool), row.result);
        EXPECT_EQ(told(answer.message).toStdString(), row.told) << row.what;
        EXPECT_EQ(answer.outcome.wait, row.wait) << row.what;
        EXPECT_EQ(answer.work.currentToolStatus, QString()) << row.what;
    }
}

TEST(ToolEvents, ASearchKeepsItsQueryAndTheTextGoesBehindIt) {
    Answer answer;
    answer.text(u"Ищу."_s);
    answer.start(u"searchWeb"_s);
    EXPECT_TRUE(answer.work.webSearchState.isSearching);
    answer.args(u"searchWeb"_s, R"({"query":"коты"})");
    EXPECT_EQ(told(answer.message), u"text(Ищу.) searching(коты)"_s);
    answer.end(u"searchWeb"_s, R"({"results":[{"title":"t","url":"u"}]})");
    answer.text(u"Нашлось."_s);
    EXPECT_EQ(told(answer.message), u"text(Ищу.) search(коты) text(Нашлось.)"_s);
    EXPECT_EQ(answer.work.webSearchState, WebSearchState());
}

TEST(ToolEvents, AnArtifactGrowsAndItsEndHasTheLastWord) {
    Answer answer;
    answer.start(u"artifact"_s);
    answer.start(u"artifact"_s); // told twice
    EXPECT_EQ(told(answer.message), u"text() artifact(temp- loading Loading... )"_s);
    answer.args(u"artifact"_s, R"({"title":"При","kind":"html","id":"a"})");
    answer.args(u"artifact"_s, R"({"title":"мер","kind":"python","text":"pri"})");
    answer.args(u"artifact"_s, R"({"text":"nt","id":"7","version":2,"title":5})");
    EXPECT_EQ(told(answer.message), u"text() artifact(a7 python Пример print)"_s);
    answer.end(u"artifact"_s, R"({"title":"","kind":"code","version":3})");
    EXPECT_EQ(told(answer.message), u"text() artifact(a7 code Пример print)"_s);
    ASSERT_TRUE(answer.outcome.finished);
    EXPECT_EQ(answer.outcome.finished->version, 3);
    answer.start(u"artifact"_s);
    answer.args(u"artifact"_s, R"({"text":"второй","kind":null})");
    answer.end(u"artifact"_s, R"({"text":"Второй","id":"b"})");
    EXPECT_EQ(told(answer.message), u"text() artifact(a7 code Пример print) artifact(b loading Loading... Второй)"_s);
}

TEST(ToolEvents, ALateImageLeavesAWordAndAnEndNothingAtWork) {
    Answer answer;
    answer.start(u"dalle"_s);
    EXPECT_TRUE(ToolEvents::imageTimedOut(answer.work, answer.message));
    EXPECT_EQ(told(answer.message), u"text() text(Не удалось создать изображение: время ожидания истекло)"_s);
    EXPECT_FALSE(answer.work.showImageSkeleton);

    Answer lost;
    lost.start(u"video"_s);
    lost.message.content->pop_back();
    lost.text(u"слово"_s);
    EXPECT_EQ(told(lost.message), u"text(слово) generating(video)"_s);
}

TEST(ToolReplay, WhatIsSentAgainIsRecognisedInItsOrder) {
    const std::vector<ToolFrame> frames{{Kind::start, u"artifact"_s, {}},
        {Kind::args, u"artifact"_s, json(R"({"text":"a"})")}, {Kind::args, u"artifact"_s, json(R"({"text":"a"})")},
        {Kind::end, u"artifact"_s, json(R"({"id":"1"})")}};
    for (std::size_t lost = 0; lost <= frames.size(); ++lost) {
        ToolReplay replay;
        QStringList taken;
        for (std::size_t i = 0; i < lost; ++i)
            EXPECT_FALSE(replay.isRepeat(frames[i]));
        for (int round = 0; round < 2; ++round) {
            replay.begin();
            for (std::size_t i = 0; i < frames.size(); ++i)
                EXPECT_EQ(replay.isRepeat(frames[i]), round > 0 || i < lost) << lost << ' ' << i;
        }
        EXPECT_EQ(replay.head(), frames.front().fingerprint());
        EXPECT_FALSE(replay.isRepeat(frames.back())) << "a later one of the same kind is new";
    }
}

TEST(ArtifactFinder, FindsByNameElseByIdentifierElseTheLastThatHasText) {
    const auto message = [](qint64 id, std::vector<MessageContent> content) {
        ChatMessage made;
        made.id = id;
        made.role = ChatMessage::Role::ai;
        made.content = std::move(content);
        return made;
    };
    const Artifact a{u"a"_s, u"A"_s, u"html"_s, u"1"_s, {}};
    const Artifact b{u"b"_s, u"B"_s, u"html"_s, u"2"_s, {}};
    const Artifact empty{u"e"_s, u"E"_s, u"html"_s, {}, {}};
    const Artifact second{u"a"_s, u"A2"_s, u"html"_s, u"3"_s, 2};
    std::vector<ChatMessage> messages{message(1, {{a}, {second}, {b}}), message(2, {{empty}})};
    EXPECT_EQ(ArtifactFinder::find(messages, {u"a"_s, {}})->title, u"A"_s);
    EXPECT_EQ(ArtifactFinder::find(messages, {u"a"_s, 2})->title, u"A2"_s);
    EXPECT_EQ(ArtifactFinder::find(messages, {u"a"_s, 3})->title, u"A"_s);
    EXPECT_EQ(ArtifactFinder::find(messages, {u"e"_s, {}})->title, u"E"_s);
    EXPECT_EQ(ArtifactFinder::find(messages, {u"temp-1"_s, {}})->title, u"B"_s);
    EXPECT_EQ(ArtifactFinder::find({}, {u"a"_s, {}}), nullptr);

    const auto restored = [&](qint64 messageId) {
        return ArtifactFinder::restoreArtifactIfNeeded(messages, {.chatId = 1, .messageId = messageId, .artifact = b});
    };
    EXPECT_FALSE(restored(1));
    EXPECT_FALSE(restored(3));
    messages.push_back(message(3, {{Text{u"t"_s}}}));
    EXPECT_TRUE(restored(3));
    EXPECT_EQ(messages.back().content->size(), 2U);

    EXPECT_EQ(ArtifactFinder::labelOf(u"JavaScript"_s), u"JavaScript"_s);
    EXPECT_EQ(ArtifactFinder::labelOf(u"mermaid"_s), u"Diagram"_s);
    EXPECT_EQ(ArtifactFinder::labelOf(u"shell script"_s), u"Shell Script"_s);
}

// What an answer has to hold when all is over, worked out the long way: the words of the answer and of its tools, in any
// order, and its artifacts, each from all that was told of it so far.
class Expected {
public:
    void piece(const QString& words) { words_ << words; }
    void frame(const ToolFrame& frame) {
        const QJsonObject content = frame.content.value_or(QJsonObject());
        const ToolClass toolClass = ToolNames::classOf(frame.tool);
        if (toolClass == ToolClass::artifact)
            return artifact(frame.kind, content);
        const bool speaks = toolClass == ToolClass::image || toolClass == ToolClass::video;
        if (speaks && frame.kind == Kind::end && content.contains("text"_L1))
            words_ << content["text"_L1].toString();
    }
    QStringList words() const { return sorted(words_); }
    QStringList artifacts() const {
        QStringList all;
        for (const QJsonObject& each : artifacts_) {
            if (each.contains("text"_L1))
                all << line(each["id"_L1].toString(), each["kind"_L1].toString(), each["text"_L1].toString());
        }
        return all;
    }

    static QStringList wordsOf(const ChatMessage& message) {
        static const QRegularExpression word(u"<[^<>]*>"_s);
        QStringList all;
        for (const auto& match : word.globalMatch(MessageComposition::joinedText(message)))
            all << match.captured();
        return sorted(all);
    }
    static QStringList artifactsOf(const ChatMessage& message) {
        QStringList all;
        for (const MessageContent& block : *message.content) {
            if (const auto* artifact = block.as<Artifact>())
                all << line(artifact->id.startsWith("temp-"_L1) ? u"temp-"_s : artifact->id, artifact->kind,
                    artifact->text.toString());
        }
        return all;
    }

private:
    static QStringList sorted(QStringList list) {
        list.sort();
        return list;
    }
    static QString line(const QString& id, const QString& kind, const QString& text) {
        return id + u' ' + kind + u' ' + text;
    }
    void artifact(Kind kind, const QJsonObject& content) {
        const QJsonObject placeholder{{"id", "temp-"}, {"kind", "loading"}};
        if (kind == Kind::start) {
            told_ = {};
            const auto isUnnamed = [&](const QJsonObject& each) {
                return each["id"_L1] == placeholder["id"_L1] && each["kind"_L1] == placeholder["kind"_L1];
            };
            if (std::none_of(artifacts_.begin(), artifacts_.end(), isUnnamed))
                artifacts_.push_back(placeholder);
            return;
        }
        for (auto value = content.begin(); value != content.end(); ++value) {
            const bool joins = kind == Kind::args && (value.key() == "id"_L1 || value.key() == "text"_L1);
            told_[value.key()] = (joins ? told_[value.key()].toString() : QString()) + value->toString();
        }
        for (auto value = told_.begin(); value != told_.end() && !artifacts_.empty(); ++value)
            artifacts_.back()[value.key()] = *value;
        if (kind == Kind::end)
            told_ = {};
    }

    QStringList words_;
    std::vector<QJsonObject> artifacts_;
    QJsonObject told_; // of the one that is written
};

// Tools in any order, on lines that break anywhere: nothing that was said is lost or doubled, and at the end nothing is
// said to be at work.
TEST(ToolEvents, AnyTurnOfEventsLeavesTheWordsAndNoPlaceholder) {
    const QStringList tools{u"artifact"_s, u"web-search"_s, u"video"_s, u"dalle"_s, u"document"_s, u"python"_s};
    // "#": a word of its own each time.
    const QStringList contents{u"{}"_s, u"{'loading':true}"_s, u"{'imageUrl':'https://i/1'}"_s, u"{'text':'#'}"_s,
        u"{'videoUrl':'https://v'}"_s, u"{'fileUrl':'https://f'}"_s, u"{'query':'коты'}"_s, u"{'id':'a'}"_s,
        u"{'id':'b','text':'#','kind':'html'}"_s, u"{'results':[]}"_s};
    const QStringList pieces{
        u"#"_s, u"#"_s, u"# [[1]](https://a.example/x) "_s, u" [отчёт](https://korvihub.example/f) #"_s};
    for (unsigned seed = 0; seed < 500; ++seed) {
        std::minstd_rand dice(seed + 1); // NOLINT: repeatable
        const auto upTo = [&](std::size_t bound) { return static_cast<std::size_t>(dice() % bound); };
        const auto oneOf = [&](const auto& list) {
            return list.at(static_cast<qsizetype>(upTo(static_cast<std::size_t>(list.size()))));
        };
        struct Event {
            std::optional<ToolFrame> frame;
            QString piece;
        };
        std::vector<Event> events;
        Expected expected;
        for (std::size_t count = upTo(30); count > 0; --count) {
            const QString word = u"<%1>"_s.arg(static_cast<int>(events.size()));
            if (upTo(2) == 0) {
                events.push_back({std::nullopt, oneOf(pieces).replace(u'#', word)});
                expected.piece(word);
            } else {
                const auto kind = static_cast<Kind>(upTo(3));
                const bool isBare = kind == Kind::start || upTo(4) == 0;
                const QString content = oneOf(contents).replace(u'\'', u'"').replace(u'#', word);
                events.push_back({ToolFrame{kind, oneOf(tools),
                                      isBare ? std::nullopt : std::optional(json(content.toUtf8().constData()))},
                    {}});
                expected.frame(*events.back().frame);
            }
        }
        const auto play = [&](Answer& answer, std::size_t until) {
            for (std::size_t i = 0; i < until; ++i) {
                const Event& event = events[i];
                if (!event.frame)
                    answer.text(event.piece);
                else if (!answer.work.replay.isRepeat(*event.frame))
                    answer.take(event.frame->kind, event.frame->tool, event.frame->content);
            }
        };
        Answer straight;
        play(straight, events.size());
        Answer broken;
        for (int losses = 3; losses > 0; --losses) {
            play(broken, upTo(events.size() + 1));
            broken.fold.beginReplay();
            broken.work.replay.begin();
        }
        play(broken, events.size());
        ASSERT_EQ(told(broken.message).toStdString(), told(straight.message).toStdString()) << "seed " << seed;

        MessageComposition::removePlaceholders(straight.message);
        ToolEvents::rest(straight.work);
        cleanInlineCitations(*straight.message.content);
        const QString left = told(straight.message);
        EXPECT_FALSE(left.contains(u"generating("_s) || left.contains(u"searching("_s)) << "seed " << seed;
        EXPECT_EQ(Expected::wordsOf(straight.message), expected.words())
            << "seed " << seed << ' ' << left.toStdString();
        EXPECT_EQ(Expected::artifactsOf(straight.message), expected.artifacts())
            << "seed " << seed << ' ' << left.toStdString();
    }
}

}
}
