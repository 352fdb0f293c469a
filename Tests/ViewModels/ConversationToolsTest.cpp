// Tools, files and recovery as one sees them in a conversation.
#include "ChatViewModelFixture.h"

#include <QBuffer>
#include <QSignalSpy>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

class ConversationToolsTest : public ChatViewModelTest {
protected:
    // The blocks of the last message: "text image(..)".
    QString blocks() { return told(chat->messages()->messages().back()); }
    static QString told(const ChatMessage& message) {
        QStringList parts;
        for (const MessageContent& block : message.content.value_or(std::vector<MessageContent>())) {
            if (const auto* text = block.as<MessageContent::Text>())
                parts.append(u'"' + text->text + u'"');
            else if (const auto* generating = block.as<MessageContent::Generating>())
                parts.append(u"generating-"_s + generating->kind);
            else if (const auto* searching = block.as<MessageContent::SearchInProgress>())
                parts.append(u"searching-"_s + searching->query);
            else if (const auto* search = block.as<WebSearchContent>())
                parts.append(
                    u"search-"_s + QString::number(search->results.value_or(std::vector<WebSearchResult>()).size()));
            else if (const auto* image = block.as<MessageContent::Image>())
                parts.append(u"image-"_s + image->url);
            else if (const auto* file = block.as<MessageContent::File>())
                parts.append(u"file-"_s + file->url);
            else if (const auto* artifact = block.as<Artifact>())
                parts.append(u"artifact-"_s + artifact->text.toString());
        }
        return parts.join(u' ');
    }
    // A new chat with that number in which a question was asked.
    void begin(int id, const QString& question = u"вопрос"_s) {
        ask(question);
        created(id);
    }
    QUrl makeFile(const QString& name, const QByteArray& content = "text") { return files->makeFile(name, content); }
    void uploadAnswers(const QByteArray& body, int status = 200) {
        http.open(u"/storage/upload"_s).answer(body, status);
        virtualTime.runPosted();
    }
    QJsonArray lastContent() { return lastFrame()["data"].toObject()["content"].toArray(); }
};

TEST_F(ConversationToolsTest, AnImageIsSeenComingAndThenSeen) {
    begin(7);
    QSignalSpy long_(chat, &ChatViewModel::longTaskBegan);
    chunk(u"Рисую: "_s);
    chunk(u"кот"_s); // still buffered
    toolStart(u"dalle"_s);
    EXPECT_EQ(blocks(), u"\"Рисую: кот\" generating-image"_s);
    EXPECT_TRUE(chat->showImageSkeleton());
    EXPECT_TRUE(chat->hasGeneratingPlaceholder());
    toolArgs(u"dalle"_s, {{"prompt", "кот"}});
    EXPECT_EQ(chat->currentToolStatus(), u"Generating image: \"кот\"..."_s);
    EXPECT_EQ(long_.first(), (QVariantList{QVariant::fromValue<qint64>(7), u"image"_s, u"Имя"_s}));
    toolEnd(u"dalle"_s, {{"imageUrl", "https://i/1"}});
    EXPECT_EQ(chat->currentToolStatus(), QString());
    EXPECT_FALSE(chat->showImageSkeleton());
    chunk(u" Готово."_s);
    end();
    EXPECT_EQ(blocks(), u"\"Рисую: кот\n\n![image](https://i/1) Готово.\""_s);
    virtualTime.advance(200s);
    EXPECT_EQ(blocks(), u"\"Рисую: кот\n\n![image](https://i/1) Готово.\""_s);
}

TEST_F(ConversationToolsTest, AnImageThatDoesNotComeEndsTheWaiting) {
    begin(7);
    toolStart(u"dalle"_s);
    virtualTime.advance(179s);
    EXPECT_TRUE(chat->isGenerating());
    virtualTime.advance(1s);
    EXPECT_FALSE(chat->isGenerating());
    EXPECT_EQ(blocks(), u"\"\" \"Не удалось создать изображение: время ожидания истекло\""_s);
    EXPECT_EQ(cached(7).size(), 2);
    // Its end comes late: it is nobody else's, and the stored answer is looked at.
    http.answer(u"/chats/7/messages"_s, messagesJson(7, {u"вопрос"_s, u"![image](https://i/1)"_s}));
    toolEnd(u"dalle"_s, {{"imageUrl", "https://i/1"}});
    end();
    virtualTime.runPosted();
    EXPECT_EQ(blocks(), u"\"![image](https://i/1)\""_s);
}

TEST_F(ConversationToolsTest, AFailedImageMayLeaveNoEnd) {
    begin(7);
    toolStart(u"dalle"_s);
    toolEnd(u"dalle"_s, {{"text", "Нельзя"}});
    virtualTime.advance(5s);
    EXPECT_FALSE(chat->isGenerating());
    // What comes next is of the next answer.
    ask(u"дальше"_s);
    EXPECT_TRUE(chat->isGenerating());
    chunk(u"Ответ"_s);
    end();
    EXPECT_THAT(shown(), ElementsAre(u"user: вопрос"_s, u"ai: \nНельзя"_s, u"user: дальше"_s, u"ai: Ответ"_s));

    // While anything comes, it is not over.
    ask(u"ещё"_s);
    toolStart(u"dalle"_s);
    toolEnd(u"dalle"_s, {{"text", "Нельзя"}});
    virtualTime.advance(4s);
    chunk(u"Но вот что"_s);
    virtualTime.advance(10s);
    EXPECT_TRUE(chat->isGenerating());
    end();
    EXPECT_FALSE(chat->isGenerating());
}

TEST_F(ConversationToolsTest, WhatAToolTellsIsOfItsOwnChatOnly) {
    load({chatJson(1), chatJson(2)});
    chat->selectChat(1);
    http.open(u"/chats/1/messages"_s).answer(listJson({}));
    ask(u"поищи"_s);
    toolStart(u"searchWeb"_s);
    EXPECT_TRUE(chat->webSearchState().isSearching);
    chat->selectChat(2);
    http.open(u"/chats/2/messages"_s).answer(messagesJson(2, {u"чужой"_s, u"ответ"_s}));
    EXPECT_FALSE(chat->webSearchState().isSearching);
    toolArgs(u"searchWeb"_s, {{"query", "коты"}});
    toolStart(u"dalle"_s);
    EXPECT_EQ(chat->currentToolStatus(), QString());
    EXPECT_EQ(blocks(), u"\"ответ\""_s);
    chat->selectChat(1);
    EXPECT_EQ(blocks(), u"\"\" searching-коты generating-image"_s);
    EXPECT_EQ(chat->webSearchState().query, u"коты"_s);
    EXPECT_TRUE(chat->showImageSkeleton());
    chat->stopGeneration();
    EXPECT_EQ(blocks(), u"\"\""_s);
    EXPECT_FALSE(chat->showImageSkeleton());
    EXPECT_EQ(chat->webSearchState(), WebSearchState());
    toolEnd(u"dalle"_s, {{"imageUrl", "https://i/1"}});
    EXPECT_EQ(blocks(), u"\"\""_s);
}

TEST_F(ConversationToolsTest, ARepeatAfterALostLineDoublesNothing) {
    begin(7);
    const auto play = [&] {
        toolStart(u"searchWeb"_s);
        toolArgs(u"searchWeb"_s, {{"query", "коты"}});
        toolEnd(u"searchWeb"_s, {{"results", QJsonArray{QJsonObject{{"title", "t"}, {"url", "u"}}}}});
        chunk(u"Вот: "_s);
        toolStart(u"artifact"_s);
        toolArgs(u"artifact"_s, {{"text", "один "}});
        toolArgs(u"artifact"_s, {{"text", "один "}});
        virtualTime.advance(80ms);
    };
    play();
    const QString before = blocks();
    EXPECT_EQ(before, u"\"\" search-1 \"Вот: \" artifact-один один "_s);
    reconnect();
    created(7);
    play();
    EXPECT_EQ(blocks(), before);
    toolArgs(u"artifact"_s, {{"text", "два"}});
    toolEnd(u"artifact"_s, {{"id", "a"}, {"title", "Имя"}, {"kind", "html"}});
    chunk(u"да"_s);
    end();
    EXPECT_EQ(blocks(), u"\"\" search-1 \"Вот: да\" artifact-один один два"_s);
}

TEST_F(ConversationToolsTest, ARepeatOfWhatHasEndedIsNotTheNextAnswers) {
    load({chatJson(1)});
    chat->selectChat(1);
    http.open(u"/chats/1/messages"_s).answer(listJson({}));
    const auto play = [&] {
        toolStart(u"searchWeb"_s);
        toolArgs(u"searchWeb"_s, {{"query", "коты"}});
        toolEnd(u"searchWeb"_s, {{"results", QJsonArray{QJsonObject{{"title", "t"}, {"url", "u"}}}}});
        chunk(u"Про котов."_s);
        end();
    };
    ask(u"коты"_s);
    play();
    service.breakOff();
    ask(u"собаки"_s);
    virtualTime.advance(40s);
    service.accept();
    play(); // its end had not been confirmed
    EXPECT_TRUE(chat->isGenerating());
    EXPECT_EQ(blocks(), u"\"\""_s);
    toolStart(u"dalle"_s);
    toolEnd(u"dalle"_s, {{"imageUrl", "https://i/1"}});
    end();
    EXPECT_EQ(blocks(), u"\"\n\n![image](https://i/1)\""_s);
    EXPECT_EQ(told(chat->messages()->messages()[1]), u"\"\" search-1 \"Про котов.\""_s);
}

TEST_F(ConversationToolsTest, ALongArtifactGrowsInStepsAndIsSeenGrowing) {
    begin(7);
    toolStart(u"artifact"_s);
    const auto* artifact = chat->messages()->messages().back().content->back().as<Artifact>();
    chat->artifacts()->select(artifact->id, -1);
    int changes = 0;
    QObject::connect(chat->messages(), &QAbstractItemModel::dataChanged, [&] { ++changes; });
    toolArgs(u"artifact"_s, {{"id", "a1"}, {"title", "Отчёт"}, {"kind", "markdown"}});
    for (int i = 0; i < 1000; ++i)
        toolArgs(u"artifact"_s, {{"text", u"строка %1\n"_s.arg(i)}});
    virtualTime.advance(80ms);
    EXPECT_LT(changes, 5);
    EXPECT_TRUE(chat->artifacts()->artifact().text.view().endsWith(u"строка 999\n"_s));
    EXPECT_TRUE(chat->artifacts()->isGenerating());
    EXPECT_EQ(chat->artifacts()->kindLabel(), u"Markdown"_s);
    EXPECT_EQ(chat->artifacts()->shownArtifactId(), u"a1"_s);
    toolEnd(u"artifact"_s, {{"id", "a1"}, {"version", 1}});
    end();
    EXPECT_FALSE(chat->artifacts()->isGenerating());
    EXPECT_EQ(chat->artifacts()->title(), u"Отчёт"_s);
    chat->createChat();
    EXPECT_FALSE(chat->artifacts()->isOpen());
    EXPECT_EQ(chat->artifacts()->shownArtifactId(), QString());
}

TEST_F(ConversationToolsTest, AVersionIsShownNotItsNamesake) {
    ArtifactSelection& artifacts = *chat->artifacts();
    const auto text = [&] { return artifacts.artifact().text.toString(); };
    // "*": it grows.
    const auto seen = [&] { return text() + (artifacts.isGenerating() ? u"*"_s : QString()); };
    const auto write = [&](const QString& words, const QJsonObject& name) {
        toolArgs(u"artifact"_s, name);
        toolArgs(u"artifact"_s, {{"text", words}});
        virtualTime.advance(80ms);
    };
    begin(7);
    toolStart(u"artifact"_s);
    write(u"первая"_s, {{"id", "a"}, {"version", 1}});
    toolEnd(u"artifact"_s, {{"id", "a"}, {"version", 1}});
    end();
    ask(u"ещё раз"_s);
    toolStart(u"artifact"_s);
    write(u"втор"_s, {{"id", "a"}, {"version", 2}});
    artifacts.select(u"a"_s, 1);
    EXPECT_EQ(seen(), u"первая"_s);
    write(u"ая"_s, {});
    EXPECT_EQ(seen(), u"первая"_s);
    artifacts.select(u"a"_s, 2);
    EXPECT_EQ(seen(), u"вторая*"_s);
    EXPECT_EQ(artifacts.shownVersion(), 2);
    toolEnd(u"artifact"_s, {{"id", "a"}, {"version", 2}});
    end();
    EXPECT_EQ(seen(), u"вторая"_s);

    // One that learns its name in pieces, and its version at its end.
    ask(u"и ещё"_s);
    toolStart(u"artifact"_s);
    const auto* placeholder = chat->messages()->messages().back().content->back().as<Artifact>();
    artifacts.select(placeholder->id, -1);
    EXPECT_EQ(seen(), u"*"_s);
    write(u""_s, {{"id", "dr"}});
    EXPECT_EQ(seen(), u"*"_s);
    write(u"третья"_s, {{"id", "aft"}});
    EXPECT_EQ(seen(), u"третья*"_s);
    EXPECT_EQ(artifacts.selectedArtifactId(), u"draft"_s);
    toolEnd(u"artifact"_s, {{"id", "a"}, {"version", 3}});
    EXPECT_EQ(seen(), u"третья*"_s);
    // What is written after it is another one.
    toolStart(u"artifact"_s);
    write(u"другой"_s, {{"id", "b"}, {"version", 1}});
    EXPECT_EQ(text(), u"третья"_s);
    end();
    EXPECT_EQ(seen(), u"третья"_s);
    ask(u"и напоследок"_s);
    toolStart(u"artifact"_s);
    write(u"чужой"_s, {{"id", "c"}});
    EXPECT_EQ(seen(), u"третья"_s);
}

TEST_F(ConversationToolsTest, AnEndClearsWhatIsLeftAndCollectsTheSources) {
    begin(7);
    toolStart(u"video"_s);
    chunk(u"Смотри [[1]](https://a.example/x)."_s);
    end();
    EXPECT_EQ(blocks(), u"\"Смотри .\" search-1"_s.prepend(u"\"\" "_s));
    EXPECT_EQ(http.requests().count(u"GET /chats/7/messages"_s), 1) << "the video may have come after all";
}

TEST_F(ConversationToolsTest, WhatAPlaceholderHasDividedIsSeenAsItIsStored) {
    begin(7);
    const auto stored = messagesJson(7, {u"вопрос"_s, u"До и после."_s});
    chunk(u"До"_s);
    toolStart(u"searchWeb"_s); // tells of no end
    chunk(u" и после."_s);
    toolStart(u"searchWeb"_s);
    toolEnd(u"searchWeb"_s, {{"results", QJsonArray()}});
    http.answer(u"/chats/7/messages"_s, stored);
    end();
    virtualTime.runPosted();
    EXPECT_EQ(blocks(), u"\"До и после.\""_s);

    // Of an artifact that has been stopped before its text began nothing is stored.
    ask(u"ещё"_s);
    toolStart(u"artifact"_s);
    toolArgs(u"artifact"_s, {{"id", "a"}, {"kind", "html"}, {"title", "Имя"}});
    virtualTime.advance(80ms);
    chat->stopGeneration();
    EXPECT_EQ(blocks(), u"\"\""_s);
    EXPECT_EQ(cached(7).size(), 4);
}

// Attachments

TEST_F(ConversationToolsTest, AQuestionWaitsForItsFilesAndLeavesWithThem) {
    load({chatJson(1)});
    chat->selectChat(1);
    http.open(u"/chats/1/messages"_s).answer(listJson({}));
    QImage picture(2, 2, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QByteArray png;
    QBuffer buffer(&png);
    picture.save(&buffer, "PNG");
    EXPECT_TRUE(chat->attachments()->addFiles({makeFile(u"a.png"_s, png), makeFile(u"b.txt"_s)}));
    EXPECT_TRUE(chat->hasAttachments());
    EXPECT_TRUE(chat->canSend());
    EXPECT_EQ(files->copies().size(), 2);
    const auto frames = service.frames().size();
    ask(u"что это"_s);
    EXPECT_FALSE(chat->hasAttachments());
    EXPECT_TRUE(chat->isGenerating());
    EXPECT_TRUE(chat->attachments()->isUploadingAttachments());
    EXPECT_EQ(service.frames().size(), frames);
    const auto question = [&] { return told(chat->messages()->messages().front()); };
    EXPECT_TRUE(question().startsWith(u"image-file:///"_s)) << question().toStdString();
    uploadAnswers(R"({"url":"https://s/a"})");
    uploadAnswers(R"({"url":"https://s/b"})");
    EXPECT_EQ(service.frames().size(), frames + 1);
    EXPECT_EQ(lastContent(),
        (QJsonArray{QJsonObject{{"type", "image_url"}, {"imageUrl", "https://s/a"}},
            QJsonObject{
                {"type", "file_url"}, {"fileUrl", "https://s/b"}, {"filename", "b.txt"}, {"mimetype", "text/plain"}},
            QJsonObject{{"type", "text"}, {"text", "что это"}}}));
    EXPECT_EQ(question(), u"image-https://s/a file-https://s/b \"что это\""_s);
    EXPECT_FALSE(chat->attachments()->isUploadingAttachments());
    EXPECT_THAT(files->copies(), IsEmpty());
}

TEST_F(ConversationToolsTest, WhatIsAskedMeanwhileKeepsItsOrder) {
    load({chatJson(1), chatJson(2)});
    chat->selectChat(1);
    http.open(u"/chats/1/messages"_s).answer(listJson({}));
    chat->attachments()->addFiles({makeFile(u"a.txt"_s)});
    const auto frames = service.frames().size();
    ask(u"первый"_s);
    chat->selectChat(2);
    http.open(u"/chats/2/messages"_s).answer(listJson({}));
    ask(u"второй"_s);
    EXPECT_EQ(service.frames().size(), frames);
    uploadAnswers(R"({"url":"https://s/a"})");
    EXPECT_EQ(service.frames().size(), frames + 2);
    EXPECT_EQ(lastText(), u"второй"_s);
    chunk(u"Первому."_s);
    end();
    chunk(u"Второму."_s);
    end();
    EXPECT_THAT(shown(), ElementsAre(u"user: второй"_s, u"ai: Второму."_s));
    chat->selectChat(1);
    EXPECT_EQ(told(chat->messages()->messages().front()), u"file-https://s/a \"первый\""_s);
    EXPECT_EQ(blocks(), u"\"Первому.\""_s);
}

TEST_F(ConversationToolsTest, AFileThatDoesNotGoUpIsLeftOutAndCanBeSentAgain) {
    chat->attachments()->addFiles({makeFile(u"a.txt"_s)});
    ask(u"вопрос"_s);
    uploadAnswers(R"({"message":"Полно"})", 500);
    EXPECT_EQ(lastContent(), (QJsonArray{QJsonObject{{"type", "text"}, {"text", "вопрос"}}}));
    const auto* file = chat->messages()->messages().front().content->front().as<MessageContent::File>();
    ASSERT_TRUE(file);
    EXPECT_TRUE(chat->attachments()->failureOf(file->url).contains(u"Полно"_s));
    EXPECT_TRUE(chat->attachments()->retry(file->url));
    EXPECT_EQ(chat->pendingFileAttachments()->count(), 1);
    EXPECT_EQ(chat->attachments()->failureOf(file->url), QString());

    // With nothing else to say, it does not go at all.
    created(7);
    end();
    const auto frames = service.frames().size();
    chat->sendMessage();
    uploadAnswers("{}", 500);
    virtualTime.advance(0ms);
    EXPECT_EQ(service.frames().size(), frames);
    EXPECT_FALSE(chat->isGenerating());
    EXPECT_EQ(chat->messages()->count(), 2);
    EXPECT_EQ(chat->pendingFileAttachments()->count(), 1);
    EXPECT_EQ(chat->generationError(), u"Вложения не дошли до сервиса."_s);
}

TEST_F(ConversationToolsTest, AnImageBehindAnEditedOneWaitsAgainIfItDoesNotGoUp) {
    chat->attachments()->addFiles({makeFile(u"1.svg"_s), makeFile(u"2.svg"_s)});
    chat->setEditImage(u"https://i/edited.png"_s, u"поправь"_s);
    chat->sendMessage();
    uploadAnswers("{}", 500);
    uploadAnswers(R"({"url":"https://s/2"})");
    // The message shows the edited one.
    ASSERT_EQ(chat->pendingFileAttachments()->count(), 1);
    EXPECT_EQ(chat->pendingFileAttachments()->attachments().front().filename, u"1.svg"_s);
}

TEST_F(ConversationToolsTest, WhatDoesNotGoUpIsSentSeparatelyOrWaitsAgain) {
    chat->attachments()->addFiles({makeFile(u"a.txt"_s), makeFile(u"1.svg"_s), makeFile(u"2.svg"_s)});
    ask(u"вопрос"_s);
    uploadAnswers("{}", 500);
    uploadAnswers(R"({"url":"https://s/1"})");
    uploadAnswers("{}", 500);
    // The second image stands in no message.
    ASSERT_EQ(chat->pendingFileAttachments()->count(), 1);
    EXPECT_EQ(chat->pendingFileAttachments()->attachments().front().filename, u"2.svg"_s);
    EXPECT_TRUE(chat->pendingFileAttachments()->attachments().front().uploadError);
    EXPECT_EQ(chat->attachments()->failed()->count(), 1);
    const QUrl failed = *chat->attachments()->failed()->attachments().front().localURL;

    chat->sendSeparately(failed); // an answer is under way
    EXPECT_EQ(chat->messages()->count(), 2);
    created(7);
    end();
    chat->setCurrentInput(u"черновик"_s);
    chat->sendSeparately(QUrl(u"file:///etc/passwd"_s));
    EXPECT_EQ(chat->messages()->count(), 2);
    chat->sendSeparately(failed);
    uploadAnswers(R"({"url":"https://s/a"})");
    EXPECT_EQ(told(chat->messages()->messages().at(2)), u"file-https://s/a"_s);
    EXPECT_EQ(lastContent().size(), 1);
    EXPECT_EQ(chat->attachments()->sizeOf(u"https://s/a"_s), u"4 байт"_s);
    EXPECT_EQ(chat->currentInput(), u"черновик"_s);
    EXPECT_EQ(chat->pendingFileAttachments()->count(), 1);
}

TEST_F(ConversationToolsTest, WhatIsDroppedOrPastedIsTaken) {
    auto* attachments = chat->attachments();
    // The file that is fine does not hide the one before it that is not.
    attachments->addFiles({makeFile(u"a.exe"_s), makeFile(u"a.txt"_s)});
    EXPECT_EQ(chat->pendingFileAttachments()->count(), 1);
    EXPECT_EQ(attachments->fileValidationError(), u"exe не поддерживается"_s);
    attachments->dismissValidationError();
    EXPECT_TRUE(attachments->addDropped({QUrl(u"https://a/b.png"_s)}, "picture", u"image/png"_s));
    EXPECT_EQ(chat->pendingFileAttachments()->count(), 2);
    EXPECT_TRUE(attachments->addDropped({QUrl(u"https://a/b.png"_s)}, {}, {}));
    EXPECT_FALSE(attachments->fileValidationError().isEmpty()); // nothing was fetched
    EXPECT_FALSE(attachments->addDropped({}, {}, {}));

    files->clipboard.text = true; // file managers give the paths as text, too
    files->clipboard.copied = {makeFile(u"b.txt"_s)};
    EXPECT_TRUE(attachments->paste());
    files->clipboard.copied.clear();
    EXPECT_FALSE(attachments->paste());
    EXPECT_EQ(chat->pendingFileAttachments()->count(), 3);
    attachments->setAIPlusMode(false);
    EXPECT_FALSE(attachments->nameFilters().join(u' ').contains(u"*.mp3"_s));
    EXPECT_TRUE(attachments->nameFilters().front().contains(u"*.png *.jpg"_s));
}

TEST_F(ConversationToolsTest, StoppedOrEndedAmidAnUploadNothingIsLost) {
    restart();
    chat->attachments()->addFiles({makeFile(u"a.txt"_s)});
    ask(u"вопрос"_s);
    chat->stopGeneration();
    virtualTime.advance(0ms);
    EXPECT_EQ(chat->currentInput(), u"вопрос"_s);
    EXPECT_EQ(chat->pendingFileAttachments()->count(), 1);
    EXPECT_FALSE(chat->attachments()->isUploadingAttachments());
    EXPECT_TRUE(http.last().isCancelled);
    EXPECT_EQ(chat->messages()->count(), 0);

    chat->sendMessage();
    EXPECT_FALSE(chat->generationError().contains(u"прикрепите"_s));
    restart(); // with which the copies of its files are gone
    EXPECT_EQ(chat->currentInput(), u"вопрос"_s);
    EXPECT_TRUE(chat->generationError().contains(u"файлы к нему прикрепите ещё раз"_s));
    EXPECT_FALSE(chat->isGenerating());
    EXPECT_THAT(service.frames(), IsEmpty());
}

TEST_F(ConversationToolsTest, APastedImageIsUploadedBeforeItIsSent) {
    chat->setEditImage(makeFile(u"secret.png"_s).toString(), u"поправь"_s); // as an answer might name it
    chat->setEditImage(QUrl::fromLocalFile(files->intakePath() + u"/../secret.png"_s).toString(), u"поправь"_s);
    EXPECT_FALSE(chat->hasAttachments());
    files->clipboard.picture = QImage(2, 2, QImage::Format_RGB32);
    files->clipboard.text = true;
    EXPECT_FALSE(chat->attachments()->pasteImage());
    files->clipboard.text = false;
    chat->setCurrentInput(u"начало"_s);
    EXPECT_TRUE(chat->attachments()->pasteImage());
    EXPECT_EQ(chat->currentInput(), u"начало"_s);
    EXPECT_TRUE(chat->pendingEditImageUrl().startsWith(u"file:///"_s));
    chat->sendMessage();
    uploadAnswers(R"({"url":"https://s/a"})");
    EXPECT_EQ(lastContent().first().toObject()["imageUrl"], u"https://s/a"_s);
    EXPECT_EQ(told(chat->messages()->messages().front()), u"image-https://s/a \"начало\""_s);
}

TEST_F(ConversationToolsTest, APastedImageThatIsNotSentIsNotKept) {
    const auto paste = [&] {
        files->clipboard.picture = QImage(2, 2, QImage::Format_RGB32);
        EXPECT_TRUE(chat->attachments()->pasteImage());
        EXPECT_EQ(files->copies().size(), 1);
    };
    paste();
    paste(); // in the first one's place
    chat->clearPendingEditImage();
    EXPECT_THAT(files->copies(), IsEmpty());
    paste();
    chat->createChat();
    EXPECT_THAT(files->copies(), IsEmpty());
    paste();
    chat->setEditImage(u"https://s/other.png"_s, {});
    EXPECT_THAT(files->copies(), IsEmpty());
    // One that did not go up can be sent again, whatever else is edited meanwhile.
    paste();
    const QString pasted = chat->pendingEditImageUrl();
    ask(u"поправь"_s);
    uploadAnswers("{}", 500);
    end();
    chat->setEditImage(pasted, {});
    chat->clearPendingEditImage();
    EXPECT_EQ(files->copies().size(), 1);
}

TEST_F(ConversationToolsTest, WhatIsNotAcceptedSaysSo) {
    auto* attachments = chat->attachments();
    attachments->addFiles({makeFile(u"a.mp3"_s)});
    EXPECT_EQ(chat->pendingFileAttachments()->count(), chat->selectedModel() == u"aiplus"_s ? 1 : 0);
    chat->chooseModel(u"aiplus"_s);
    attachments->clearFileAttachments();
    attachments->addFiles({makeFile(u"a.mp3"_s)});
    EXPECT_EQ(chat->pendingFileAttachments()->count(), 1);
    attachments->addFiles({makeFile(u"a.exe"_s)});
    EXPECT_EQ(attachments->fileValidationError(), u"exe не поддерживается"_s);
    EXPECT_EQ(files->copies().size(), 1) << "a refused copy is not kept";
    const QModelIndex first = chat->pendingFileAttachments()->index(0);
    EXPECT_EQ(first.data(AttachmentListModel::CategoryRole), u"audio"_s);
    EXPECT_EQ(first.data(AttachmentListModel::SizeTextRole), u"4 байт"_s);
    attachments->removeFileAttachment(first.data(AttachmentListModel::AttachmentIdRole).toString());
    EXPECT_EQ(attachments->fileValidationError(), QString());
    EXPECT_THAT(files->copies(), IsEmpty());
    attachments->addImageData("bytes", u"image/png"_s);
    EXPECT_EQ(chat->pendingFileAttachments()->index(0).data(AttachmentListModel::FilenameRole), u"image.png"_s);
    EXPECT_FALSE(attachments->addFiles({QUrl(u"https://a.example/b.txt"_s)}));
}

// What is remembered of the running answer

TEST_F(ConversationToolsTest, TheRecordLivesAsLongAsTheAnswer) {
    const auto record = [&] { return GenerationStateManager(defaults, virtualTime, virtualTime).getPending(); };
    QSignalSpy ready(chat, &ChatViewModel::answerReady);
    QSignalSpy ended(chat, &ChatViewModel::generationEnded);
    // Whoever tells of the answer still knows that it was tracked.
    QObject::connect(chat, &ChatViewModel::answerReady, [&] { EXPECT_EQ(ended.count(), 0); });
    ask(u"нарисуй кота"_s);
    EXPECT_EQ(record()->chatId, -1);
    EXPECT_EQ(record()->type, u"image"_s);
    EXPECT_EQ(record()->lastMessageCount, 0);
    created(7);
    EXPECT_EQ(record()->chatId, 7);
    EXPECT_EQ(record()->chatName, u"Имя"_s);
    end();
    EXPECT_FALSE(record());
    EXPECT_EQ(ready.count(), 1);
    EXPECT_EQ(ready.first().at(1), u"Имя"_s);
    EXPECT_EQ(ended.count(), 1);
    ask(u"ещё"_s);
    EXPECT_EQ(record()->lastMessageCount, 4);
    chat->stopGeneration();
    EXPECT_FALSE(record());
    EXPECT_EQ(ready.count(), 1);
    end();
    ask(u"и ещё"_s);
    http.answer(u"/chats/7/messages"_s, messagesJson(7, {u"нарисуй кота"_s, {}, u"ещё"_s, {}}));
    error(u"Беда"_s, 7);
    virtualTime.runPosted();
    EXPECT_FALSE(record());
}

TEST_F(ConversationToolsTest, ComingBackFindsTheAnswerThatEndedUnheard) {
    load({chatJson(1), chatJson(2)});
    chat->selectChat(1);
    http.open(u"/chats/1/messages"_s).answer(listJson({}));
    ask(u"вопрос"_s);
    chunk(u"Нача"_s);
    chat->selectChat(2);
    http.open(u"/chats/2/messages"_s).answer(listJson({}));
    chat->recoverFromBackground();
    chat->recoverFromBackground(); // one at a time
    EXPECT_TRUE(chat->isRecovering());
    virtualTime.advance(3s);
    const QByteArray stored = messagesJson(1, {u"вопрос"_s, u"Начало и конец"_s, u"лишнее"_s});
    http.open(u"/chats/1/messages"_s).answer(stored);
    virtualTime.runPosted();
    EXPECT_FALSE(chat->isRecovering());
    EXPECT_EQ(chat->completedInOtherChatId(), 1);
    EXPECT_EQ(chat->completedInOtherChatName(), u"Имя"_s);
    virtualTime.advance(5s);
    EXPECT_EQ(chat->completedInOtherChatId(), -1);
}

// An artifact was seen being written, and the answer that is stored lacks it.
class LostArtifactTest : public ConversationToolsTest {
protected:
    // In a new chat; the end of the answer does not come.
    void write(int chatId) {
        begin(chatId);
        toolStart(u"artifact"_s);
        toolEnd(u"artifact"_s, {{"id", "a"}, {"title", "Имя"}, {"kind", "html"}, {"text", "строка"}});
        answerId_ = chat->messages()->messages().back().id;
    }
    // The answer of the new chat is there, under the number of the one that was written.
    void comeBack(int chatId) {
        QJsonArray list = QJsonDocument::fromJson(messagesJson(chatId, {u"вопрос"_s, u"Вот."_s}))["data"].toArray();
        QJsonObject answer = list[1].toObject();
        answer["id"] = answerId_;
        list[1] = answer;
        http.answer(u"/chats/%1/messages"_s.arg(chatId), listJson(list));
        chat->recoverFromBackground();
        virtualTime.advance(10s);
    }

private:
    qint64 answerId_ = 0;
};

TEST_F(LostArtifactTest, IsPutBackIntoTheAnswerThatIsStored) {
    write(1);
    comeBack(1);
    EXPECT_FALSE(chat->isGenerating());
    EXPECT_EQ(blocks(), u"\"Вот.\" artifact-строка"_s);
    EXPECT_EQ(cache.getCachedMessages(1)->back().content->size(), 2U);
}

TEST_F(LostArtifactTest, IsNotPutIntoAnotherChatsAnswerOfTheSameNumber) {
    write(1);
    chat->createChat();
    end(); // of the first
    begin(2);
    comeBack(2);
    EXPECT_EQ(blocks(), u"\"Вот.\""_s);
}

TEST_F(LostArtifactTest, IsForgottenWithTheUserAndTheOrganization) {
    write(1);
    chat->reset();
    begin(1);
    comeBack(1);
    EXPECT_EQ(blocks(), u"\"Вот.\""_s);

    write(3);
    http.answer(u"/chats"_s, listJson({}));
    emit notifications.organizationDidChange();
    virtualTime.runPosted();
    service.accept();
    end(); // of what was being written
    begin(3);
    comeBack(3);
    EXPECT_EQ(blocks(), u"\"Вот.\""_s);
}

TEST_F(ConversationToolsTest, ComingBackDoesNotDisturbAnAnswerThatGoesOn) {
    begin(7);
    chunk(u"Нача"_s);
    chat->recoverFromBackground();
    virtualTime.advance(3s);
    // The question is stored, and counts as more than nothing.
    http.answer(u"/chats/7/messages"_s, messagesJson(7, {u"вопрос"_s}));
    http.open(u"/chats/7/messages"_s).answer(messagesJson(7, {u"вопрос"_s}));
    virtualTime.advance(10s);
    EXPECT_TRUE(chat->isGenerating());
    chunk(u"ло"_s);
    end();
    EXPECT_THAT(shown(), ElementsAre(u"user: вопрос"_s, u"ai: Начало"_s));
}

}
}
