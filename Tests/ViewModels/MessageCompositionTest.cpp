#include "Chat/MessageComposition.h"
#include "FakeRandom.h"
#include "Printing.h"
#include "VirtualScheduler.h"

#include <gmock/gmock.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using testing::ElementsAre;
using Content = MessageContent;
using Role = ChatMessage::Role;

Content text(const QString& words) {
    return {Content::Text{words}};
}
Content file(const QString& name) {
    return {Content::File{u"https://files.example/"_s + name, name, u"application/pdf"_s}};
}
ChatMessage message(Role role, std::vector<Content> content) {
    ChatMessage made;
    made.role = role;
    made.content = std::move(content);
    return made;
}

TEST(MessageComposition, ATurnIsAQuestionAndAnEmptyAnswer) {
    using MessageComposition::contentOf;
    EXPECT_THAT(contentOf(u"Привет"_s, {}), ElementsAre(text(u"Привет"_s)));
    EXPECT_THAT(contentOf(u"Ярче"_s, u"https://a/b.png"_s),
        ElementsAre(Content{Content::Image{u"https://a/b.png"_s}}, text(u"Ярче"_s)));
    EXPECT_THAT(contentOf({}, u"https://a/b.png"_s), ElementsAre(Content{Content::Image{u"https://a/b.png"_s}}));

    const VirtualScheduler clock;
    FakeRandom random;
    for (const double fraction : {0.0, 1.0}) {
        random.fraction = fraction;
        const auto turn = MessageComposition::begin({text(u"Привет"_s)}, -1, clock, random);
        for (const ChatMessage& made : {turn.question, turn.answer}) {
            EXPECT_EQ(made.id, fraction < 0.5 ? 1000 : 9999);
            EXPECT_EQ(made.createdAt, u"2030-01-01T12:00:00Z"_s);
            EXPECT_EQ(made.chatId, -1);
            EXPECT_EQ(made.providerId, std::nullopt);
            EXPECT_EQ(made.usageTokens, 0);
        }
        EXPECT_EQ(turn.question.role, Role::user);
        EXPECT_EQ(turn.answer.role, Role::ai);
        EXPECT_THAT(*turn.answer.content, ElementsAre(text({})));
    }
}

TEST(MessageComposition, TheFirstRuleThatHoldsTellsWhatIsGenerated) {
    struct Row {
        QString text;
        bool hasImage;
        QString type;
    };
    for (const Row& row : std::initializer_list<Row>{
             {u"Нарисуй видео"_s, false, u"image"_s},
             {u"СОЗДАЙ ИЗОБРАЖЕНИЕ кота"_s, false, u"image"_s},
             {u"сгенерируй картинку"_s, false, u"image"_s},
             {u"Draw a cat"_s, false, u"image"_s},
             {u"Generate image"_s, false, u"image"_s},
             {u"Найди видео"_s, false, u"video"_s},
             {u"a Video"_s, false, u"video"_s},
             {u"Поиск"_s, false, u"search"_s},
             {u"найди билеты"_s, false, u"search"_s},
             {u"research"_s, false, u"search"_s},
             {u"Расскажи"_s, false, u"text"_s},
             {QString(), false, u"text"_s},
             {u"видео"_s, true, u"image"_s},
         }) {
        EXPECT_EQ(MessageComposition::detectGenerationType(row.text, row.hasImage), row.type) << row.text.toStdString();
    }
}

TEST(MessageComposition, FilesThatTheServiceLeavesOutStay) {
    const std::vector<ChatMessage> local{
        message(Role::user, {file(u"a.pdf"_s), file(u"b.pdf"_s), text(u"Что"_s), text(u"тут?"_s)}),
        message(Role::ai, {file(u"answer.pdf"_s), text(u"Ответ"_s)}),
        message(Role::user, {file(u"c.pdf"_s)}), // without words
        message(Role::user, {file(u"d.pdf"_s), text(u"Что тут?"_s)}),
        message(Role::user, {file(u"e.pdf"_s), text(u"Что тут?"_s)}),
        message(Role::user, {text(u"Что тут?"_s)}), // asked again, without them
    };
    std::vector<ChatMessage> server{
        message(Role::user, {text(u"Что тут?"_s)}), // before what is known here
        message(Role::user, {text(u"Что тут?"_s)}), // the words in one block by now
        message(Role::ai, {text(u"Ответ"_s)}),      // not the user's
        message(Role::user, {}),
        message(Role::user, {text(u"Что тут?"_s), file(u"own.pdf"_s)}),
        message(Role::user, {text(u"Что тут?"_s)}),
        message(Role::user, {text(u"Что тут?"_s)}),
    };
    server[3].content.reset();

    std::vector<ChatMessage> expected = server;
    expected[1].content->insert(expected[1].content->end(), {file(u"a.pdf"_s), file(u"b.pdf"_s)});
    expected[3].content = {file(u"c.pdf"_s)};
    expected[5].content->push_back(file(u"e.pdf"_s));
    const std::vector<ChatMessage> merged = MessageComposition::mergeFileAttachments(local, server);
    EXPECT_TRUE(merged == expected);
    EXPECT_TRUE(MessageComposition::mergeFileAttachments(merged, server) == expected) << "once more changes nothing";
    EXPECT_TRUE(MessageComposition::mergeFileAttachments({}, server) == server);
}

TEST(MessageComposition, WhatNeverCameToTheServiceStaysWithItsMessage) {
    const Content lostImage{Content::Image{u"file:///tmp/a.png"_s}};
    const Content lostFile{Content::File{u"file:///tmp/b.txt"_s, u"b.txt"_s, u"text/plain"_s}};
    const Content image{Content::Image{u"https://files.example/b.png"_s}};
    const std::vector<ChatMessage> local{
        message(Role::user, {lostImage, file(u"a.txt"_s), lostFile, text(u"a"_s)}),
        message(Role::ai, {}),
        message(Role::user, {image, text(u"b"_s)}),
    };
    const std::vector<ChatMessage> server{
        message(Role::user, {image, file(u"a.txt"_s), text(u"a"_s)}),
        message(Role::ai, {}),
        message(Role::user, {text(u"b"_s)}),
    };
    std::vector<ChatMessage> expected = server;
    expected[0].content = {lostImage, image, file(u"a.txt"_s), text(u"a"_s), lostFile};
    EXPECT_TRUE(MessageComposition::mergeFileAttachments(local, server) == expected);
    EXPECT_TRUE(MessageComposition::mergeFileAttachments(expected, server) == expected) << "once more changes nothing";
}

TEST(MessageComposition, OnlyWhatSaysThatAToolIsAtWorkIsTakenAway) {
    ChatMessage answer = message(Role::ai,
        {text(u"a"_s), {Content::Generating{u"image"_s}}, {Content::SearchInProgress{u"q"_s}}, text(u"b"_s),
            {Content::Thinking{u"t"_s}}, {Content::Generating{u"video"_s}}});
    MessageComposition::removePlaceholders(answer);
    EXPECT_THAT(*answer.content, ElementsAre(text(u"a"_s), text(u"b"_s), Content{Content::Thinking{u"t"_s}}));
    answer.content.reset();
    MessageComposition::removePlaceholders(answer);
    EXPECT_EQ(answer.content, std::nullopt);
}

TEST(MessageComposition, TheLastQuestionIsFoundAndItsRow) {
    using MessageComposition::lastQuestion;
    using MessageComposition::rowOfQuestion;
    std::vector<ChatMessage> messages;
    EXPECT_EQ(lastQuestion(messages), std::nullopt);
    messages = {message(Role::user, {text(u"a"_s)}), message(Role::assistant, {text(u"1"_s)}),
        message(Role::user, {text(u"a"_s)}), message(Role::ai, {text(u"2"_s)}),
        message(Role::user, {{Content::Image{u"https://a/b.png"_s}}, text(u"b"_s), text(u"c"_s)})};
    EXPECT_EQ(lastQuestion(messages), u"b"_s) << "its first words";
    EXPECT_EQ(rowOfQuestion(messages, u"a"_s), 2);
    EXPECT_EQ(rowOfQuestion(messages, u"c"_s), std::nullopt);
    EXPECT_EQ(rowOfQuestion(messages, u"b\nc"_s), std::nullopt) << "no answer stands behind it";
    messages.push_back(message(Role::user, {file(u"a.pdf"_s)}));
    EXPECT_EQ(lastQuestion(messages), std::nullopt) << "the last one has no words";
}

}
}
