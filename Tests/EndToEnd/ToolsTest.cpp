// Each tool with the real service: what it makes comes into the window, opens, is saved and outlives the client.
#include "Artifacts/ArtifactPreview.h"
#include "Components/WebPicture.h"
#include "LocalService.h"
#include "OtherPrograms.h"
#include "Person.h"
#include "Printing.h"
#include "WaitFor.h"

#include <QClipboard>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QTest>

#include <gtest/gtest.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using namespace std::chrono_literals;

class Tools : public testing::Test {
protected:
    void start(int delay) {
        m_service.start({u"--demo-delay-ms"_s, QString::number(delay)});
        m_person = std::make_unique<Person>(m_service.port());
        m_person->startClient();
        ASSERT_TRUE(m_person->signIn(u"user@example.com"_s, [this] { return m_service.code(); }));
        ASSERT_TRUE(waitFor([this] { return m_person->chat().isConnected(); }));
    }
    // The client once more, with the only chat opened.
    void restart() {
        m_person->quitClient();
        m_person->startClient();
        ASSERT_TRUE(waitFor([this] { return m_person->chat().chats()->count() == 1; }));
        m_person->chat().selectChat(m_person->chat().chats()->chats().front().id);
    }
    bool answerEnds() {
        return waitFor([this] { return !m_person->chat().isGenerating(); }, 60s);
    }
    bool focused(const QString& objectName) {
        return waitFor([&] { return m_person->focus() == objectName; });
    }
    // An item's property, once it is as expected.
    template <class T>
    bool becomes(const QString& objectName, const char* property, const T& expected) {
        return waitFor([&] {
            const QQuickItem* item = m_person->see(objectName);
            return item && item->property(property).value<T>() == expected;
        });
    }
    bool opened(const std::function<bool(const QString&)>& isIt) {
        return waitFor([&] {
            const QStringList files = m_programs.files();
            return !files.isEmpty() && isIt(files.last());
        });
    }
    static QByteArray contentOf(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    OtherPrograms m_programs;
    LocalService m_service;
    std::unique_ptr<Person> m_person;
};

TEST_F(Tools, ASearchShowsAnswerSourcesAndPictures) {
    start(1);
    m_person->ask(u"Найди, какой глубины Байкал"_s);
    ASSERT_TRUE(m_person->waitToSee(u"searching"_s));
    ASSERT_TRUE(m_person->waitToSee(u"searchHeader"_s));
    EXPECT_FALSE(m_person->see(u"searching"_s));
    ASSERT_TRUE(answerEnds());
    ASSERT_TRUE(m_person->tabTo(u"searchHeader"_s));
    m_person->press(Qt::Key_Return);
    ASSERT_TRUE(m_person->waitToSee(u"searchAnswer"_s));
    ASSERT_TRUE(m_person->tabTo(u"answerTab"_s));
    m_person->press(Qt::Key_Right);
    EXPECT_EQ(m_person->focus(), u"sourcesTab"_s);
    ASSERT_TRUE(m_person->tabTo(u"sourceRow"_s));
    m_person->press(Qt::Key_Return);
    ASSERT_EQ(m_programs.pages.size(), 1);
    EXPECT_EQ(m_programs.pages.first().host(), u"ru.wikipedia.org"_s);

    m_person->press(Qt::Key_Backtab, Qt::ShiftModifier);
    m_person->press(Qt::Key_Right);
    ASSERT_TRUE(focused(u"imagesTab"_s));
    ASSERT_TRUE(m_person->tabTo(u"searchImage"_s));
    m_person->press(Qt::Key_Return);
    ASSERT_TRUE(becomes(u"viewerPicture"_s, "status", WebPicture::Ready));
    m_person->press(Qt::Key_Right);
    ASSERT_TRUE(m_person->waitToSee(u"backButton"_s));
    m_person->press(Qt::Key_Escape);
    EXPECT_TRUE(m_person->waitToLose(u"viewerPicture"_s));
    EXPECT_TRUE(focused(u"searchImage"_s));

    // The same search in another chat is another one: it is folded.
    m_person->press(Qt::Key_N, Qt::ControlModifier);
    ASSERT_TRUE(m_person->waitToLose(u"searchHeader"_s));
    m_person->ask(u"Найди, какой глубины Байкал"_s);
    ASSERT_TRUE(m_person->waitToSee(u"searchHeader"_s));
    ASSERT_TRUE(answerEnds());
    EXPECT_FALSE(m_person->see(u"tabContent"_s));
}

TEST_F(Tools, CitationsStandBeneathTheTextAndThenAsSources) {
    start(5);
    m_person->ask(u"Назови источники"_s);
    ASSERT_TRUE(m_person->waitToSee(u"citationFooter"_s));
    ASSERT_TRUE(m_person->waitToSee(u"citationChip"_s));
    ASSERT_TRUE(answerEnds());
    ASSERT_TRUE(m_person->waitToSee(u"searchHeader"_s));
    EXPECT_FALSE(m_person->readAnswers().join(u' ').contains(u"[["_s));
    EXPECT_TRUE(m_person->waitToLose(u"citationFooter"_s));
    EXPECT_EQ(m_person->read(u"searchHeader"_s), u"Источники"_s);
    restart();
    ASSERT_TRUE(m_person->waitToSee(u"searchHeader"_s));
    m_person->click(u"searchHeader"_s);
    ASSERT_TRUE(m_person->waitToSee(u"tabContent"_s));
}

TEST_F(Tools, APictureTakesItsPlaceAndIsLookedAtByMouseAndKeyboard) {
    start(1);
    m_person->ask(u"Нарисуй реку"_s);
    ASSERT_TRUE(m_person->waitToSee(u"shimmer"_s));
    ASSERT_TRUE(m_person->waitToSee(u"imageTarget"_s));
    EXPECT_FALSE(m_person->see(u"shimmer"_s));
    ASSERT_TRUE(answerEnds());
    m_person->click(u"imageTarget"_s);
    ASSERT_TRUE(becomes(u"viewerPicture"_s, "status", WebPicture::Ready));
    m_person->click(u"closeButton"_s);
    ASSERT_TRUE(m_person->waitToLose(u"viewerPicture"_s));

    ASSERT_TRUE(m_person->tabTo(u"imageTarget"_s));
    m_person->press(Qt::Key_Return);
    ASSERT_TRUE(becomes(u"viewerPicture"_s, "status", WebPicture::Ready));
    m_person->press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->image().size(), QSize(768, 512));
    m_person->press(Qt::Key_S, Qt::ControlModifier);
    const QString path = m_person->downloads() + u"/река.png"_s;
    ASSERT_TRUE(m_person->saveAs(u"река.png"_s));
    ASSERT_TRUE(waitFor([&] { return QFileInfo(path).size() > 1000; }));
    ASSERT_TRUE(m_person->waitToSee(u"viewerPicture"_s)); // only the question is gone
    m_person->press(Qt::Key_Escape);
    EXPECT_TRUE(m_person->waitToLose(u"viewerPicture"_s));
    EXPECT_TRUE(focused(u"imageTarget"_s));
}

TEST_F(Tools, APictureThatFailsSaysWhy) {
    start(1);
    m_person->ask(u"Нарисуй ошибку"_s);
    ASSERT_TRUE(m_person->waitToSee(u"shimmer"_s));
    ASSERT_TRUE(answerEnds());
    EXPECT_TRUE(m_person->waitToLose(u"shimmer"_s));
    EXPECT_TRUE(m_person->readAnswers().last().contains(u"Не удалось создать изображение"_s));
}

TEST_F(Tools, APictureThatIsBeingDrawnOutlivesTheClient) {
    start(2);
    m_person->ask(u"Нарисуй медленный лес"_s);
    ASSERT_TRUE(m_person->waitToSee(u"shimmer"_s));
    ASSERT_TRUE(waitFor([this] { return m_person->chat().activeChatId() > 0; }));
    restart();
    ASSERT_TRUE(m_person->waitToSee(u"shimmer"_s));
    EXPECT_TRUE(m_person->chat().isGenerating());
    ASSERT_TRUE(m_person->waitToSee(u"imageTarget"_s));
    ASSERT_TRUE(answerEnds());
    EXPECT_FALSE(m_person->see(u"shimmer"_s));
    EXPECT_TRUE(m_person->readAnswers().last().contains(u"Готово: медленная картинка"_s));
}

TEST_F(Tools, AVideoPlaysInItsPlace) {
    start(1);
    m_person->ask(u"Покажи видео"_s);
    ASSERT_TRUE(m_person->waitToSee(u"shimmer"_s));
    ASSERT_TRUE(m_person->waitToSee(u"playButton"_s));
    ASSERT_TRUE(answerEnds());
    ASSERT_TRUE(m_person->tabTo(u"playButton"_s));
    m_person->press(Qt::Key_Return);
    ASSERT_TRUE(becomes(u"videoPlayer"_s, "isPlaying", true));
    EXPECT_TRUE(waitFor([this] { return m_person->see(u"videoPlayer"_s)->property("position").toReal() > 100; }));
    ASSERT_TRUE(focused(u"videoPlayer"_s));
    m_person->press(Qt::Key_Space);
    EXPECT_TRUE(becomes(u"videoPlayer"_s, "isPlaying", false));
    EXPECT_EQ(m_person->read(u"pauseButton"_s), u"Воспроизвести"_s);
    m_person->click(u"pauseButton"_s);
    EXPECT_TRUE(becomes(u"videoPlayer"_s, "isPlaying", true));
    EXPECT_TRUE(becomes(u"videoPlayer"_s, "isPlaying", false)); // it has ended
    m_person->press(Qt::Key_Space);
    EXPECT_TRUE(becomes(u"videoPlayer"_s, "isPlaying", true));
    EXPECT_TRUE(waitFor([this] { return m_person->see(u"videoPlayer"_s)->property("position").toReal() < 2000; }));

    m_person->click(u"saveButton"_s);
    ASSERT_TRUE(becomes(u"saveButton"_s, "text", u"Показать в папке"_s));
    const QFileInfoList saved = QDir(m_person->downloads()).entryInfoList(QDir::Files);
    ASSERT_EQ(saved.size(), 1);
    EXPECT_EQ(saved.first().suffix(), u"webm"_s);
    EXPECT_GT(saved.first().size(), 1000);
    m_person->click(u"saveButton"_s);
    EXPECT_TRUE(opened([this](const QString& path) { return path == m_person->downloads(); }));
}

TEST_F(Tools, AFileIsOpenedSavedAndFound) {
    start(1);
    m_person->ask(u"Составь документ"_s);
    ASSERT_TRUE(m_person->waitToSee(u"shimmer"_s));
    ASSERT_TRUE(m_person->waitToSee(u"openButton"_s));
    ASSERT_TRUE(answerEnds());
    m_person->click(u"openButton"_s);
    ASSERT_TRUE(opened([](const QString& path) { return path.endsWith(u"/Демонстрация.pdf"_s); }));
    EXPECT_TRUE(contentOf(m_programs.files().last()).startsWith("%PDF"));

    ASSERT_TRUE(m_person->tabTo(u"saveButton"_s));
    m_person->press(Qt::Key_Return);
    ASSERT_TRUE(becomes(u"saveButton"_s, "text", u"Показать в папке"_s));
    const QString saved = m_person->downloads() + u"/Демонстрация.pdf"_s;
    EXPECT_EQ(contentOf(saved), contentOf(m_programs.files().last()));
    m_person->press(Qt::Key_Return);
    EXPECT_TRUE(opened([this](const QString& path) { return path == m_person->downloads(); }));

    // A free name, and then one that is asked for.
    m_person->click(u"moreButton"_s);
    ASSERT_TRUE(m_person->waitToSee(u"saveAsItem"_s));
    m_person->click(u"saveAsItem"_s);
    const QString other = m_person->downloads() + u"/другое.pdf"_s;
    ASSERT_TRUE(m_person->saveAs(u"другое.pdf"_s));
    EXPECT_TRUE(waitFor([&] { return contentOf(other) == contentOf(saved); }));
}

TEST_F(Tools, AnArtifactIsReadWhileItIsWrittenThenShownAndSaved) {
    start(10);
    m_person->ask(u"Сделай артефакт: страницу"_s);
    ASSERT_TRUE(m_person->waitToSee(u"artifactButton"_s));
    ASSERT_TRUE(becomes(u"artifactButton"_s, "text", u"Счётчик"_s));
    m_person->click(u"artifactButton"_s);
    ASSERT_TRUE(m_person->waitToSee(u"artifactText"_s));
    ArtifactSelection& artifact = *m_person->chat().artifacts();
    ASSERT_TRUE(artifact.isGenerating());
    for (int seen = 0; seen < 3; ++seen) {
        const QString before = m_person->read(u"artifactText"_s);
        ASSERT_TRUE(waitFor([&] { return m_person->read(u"artifactText"_s) != before; }));
        EXPECT_TRUE(m_person->read(u"artifactText"_s).startsWith(before));
    }
    ASSERT_TRUE(answerEnds());

    ASSERT_TRUE(m_person->waitToSee(u"preview"_s));
    ASSERT_TRUE(becomes(u"preview"_s, "status", ArtifactPreview::Ready));
    auto* preview = qobject_cast<ArtifactPreview*>(m_person->see(u"preview"_s));
    ASSERT_TRUE(waitFor([&] { return !preview->frame().isNull(); }));
    // F6 leads out of the page, to the buttons of the document, and back.
    m_person->click(u"preview"_s);
    ASSERT_TRUE(focused(u"preview"_s));
    m_person->press(Qt::Key_F6);
    EXPECT_TRUE(focused(u"copyArtifact"_s));
    m_person->press(Qt::Key_F6);
    EXPECT_TRUE(focused(u"preview"_s));
    m_person->click(u"copyArtifact"_s);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), artifact.artifact().text.toString());

    ASSERT_TRUE(m_person->tabTo(u"saveArtifact"_s));
    m_person->press(Qt::Key_Return);
    const QString path = m_person->downloads() + u"/Счётчик.html"_s;
    ASSERT_TRUE(m_person->saveAs(u"Счётчик.html"_s));
    EXPECT_TRUE(waitFor([&] { return contentOf(path) == artifact.artifact().text.toString().toUtf8(); }));

    m_person->click(u"pdfButton"_s);
    ASSERT_TRUE(m_person->waitToSee(u"shareSheet"_s, 30s));
    m_person->click(u"savePdf"_s);
    const QString pdf = m_person->downloads() + u"/Счётчик.pdf"_s;
    ASSERT_TRUE(m_person->saveAs(u"Счётчик.pdf"_s));
    EXPECT_TRUE(waitFor([&] { return contentOf(pdf).startsWith("%PDF"); }));

    m_person->click(u"closeArtifact"_s);
    EXPECT_TRUE(m_person->waitToLose(u"artifactBody"_s));
    restart();
    ASSERT_TRUE(m_person->waitToSee(u"artifactButton"_s));
    ASSERT_TRUE(m_person->tabTo(u"artifactButton"_s));
    m_person->press(Qt::Key_Return);
    EXPECT_TRUE(m_person->waitToSee(u"preview"_s));
    m_person->press(Qt::Key_Escape);
    EXPECT_TRUE(m_person->waitToLose(u"artifactBody"_s));
    EXPECT_TRUE(focused(u"artifactButton"_s));
}

TEST_F(Tools, EveryKindOfArtifactIsShownInItsOwnWay) {
    start(1);
    struct Row {
        QString word;
        QString view; // "artifactText" for those that have no page
        QString title;
        QString begin;
    };
    const QString page = u"preview"_s;
    const QString text = u"artifactText"_s;
    for (const Row& row :
        {Row{u"svg"_s, page, u"Дом у реки"_s, u"<svg"_s}, Row{u"python"_s, text, u"Кратчайший путь"_s, {}},
            Row{u"markdown"_s, text, u"План поездки"_s, {}}, Row{u"mermaid"_s, text, u"Как рождается ответ"_s, {}},
            Row{u"latex"_s, text, u"Сумма обратных квадратов"_s, u"\\documentclass"_s}}) {
        m_person->press(Qt::Key_N, Qt::ControlModifier);
        ASSERT_TRUE(m_person->waitToLose(u"artifactButton"_s));
        m_person->ask(u"Сделай артефакт "_s + row.word);
        ASSERT_TRUE(m_person->waitToSee(u"artifactButton"_s));
        ASSERT_TRUE(answerEnds());
        m_person->click(u"artifactButton"_s);
        ASSERT_TRUE(m_person->waitToSee(u"artifactBody"_s)) << row.word.toStdString();
        ASSERT_TRUE(m_person->waitToSee(row.view, 20s)) << row.word.toStdString();
        const auto& shown = m_person->chat().artifacts()->artifact();
        EXPECT_EQ(shown.title, row.title);
        EXPECT_TRUE(shown.text.toString().trimmed().startsWith(row.begin)) << row.word.toStdString();
        EXPECT_GT(shown.text.size(), 100);
    }
    // Set by the service; from there it is a file like any other.
    m_person->click(u"pdfButton"_s);
    ASSERT_TRUE(m_person->waitToSee(u"shareSheet"_s, 60s)) << m_person->read(u"pdfError"_s).toStdString();
    m_person->click(u"savePdf"_s);
    const QString pdf = m_person->downloads() + u"/Сумма.pdf"_s;
    ASSERT_TRUE(m_person->saveAs(u"Сумма.pdf"_s));
    EXPECT_TRUE(waitFor([&] { return contentOf(pdf).startsWith("%PDF"); }));
}

TEST_F(Tools, OneAnswerHoldsWhatAllToolsBrought) {
    start(1);
    const auto kinds = [this] {
        QStringList all;
        for (const MessageContent& part :
            m_person->chat().messages()->messages().back().content.value_or(std::vector<MessageContent>()))
            all.append(part.toJson()["type"_L1].toString());
        return all;
    };
    m_person->ask(u"Покажи все инструменты"_s);
    ASSERT_TRUE(answerEnds());
    const QStringList shown = kinds();
    for (const QString& kind : {u"search"_s, u"artifact"_s, u"file_url"_s, u"text"_s})
        EXPECT_TRUE(shown.contains(kind)) << kind.toStdString() << " in " << shown.join(u' ').toStdString();
    const QString text = m_person->chat().messages()->messages().back().text();
    EXPECT_TRUE(text.contains(u"![image]("_s)) << text.toStdString();
    EXPECT_EQ(shown.count(u"generating"_s) + shown.count(u"searching"_s), 0);
    restart();
    ASSERT_TRUE(waitFor([&] { return !m_person->chat().messages()->messages().empty() && kinds() == shown; }))
        << kinds().join(u' ').toStdString();

    m_person->press(Qt::Key_N, Qt::ControlModifier);
    m_person->ask(u"Дай текстовый файл"_s);
    ASSERT_TRUE(m_person->waitToSee(u"openButton"_s));
    ASSERT_TRUE(answerEnds());
    m_person->click(u"openButton"_s);
    ASSERT_TRUE(opened([](const QString& path) { return path.endsWith(u"/Список покупок.txt"_s); }));
    EXPECT_TRUE(QString::fromUtf8(contentOf(m_programs.files().last())).contains(u"молоко"_s));
}

TEST_F(Tools, EachVersionOfAnArtifactOpensAsItself) {
    start(10);
    m_person->ask(u"Артефакт html"_s);
    ASSERT_TRUE(m_person->waitToSee(u"artifactButton"_s));
    ASSERT_TRUE(answerEnds());
    m_person->ask(u"Ещё раз артефакт html"_s);
    ArtifactSelection& artifact = *m_person->chat().artifacts();
    const auto cards = [&] { return m_person->seeAll(u"artifactButton"_s); };
    const auto selected = [&] {
        QStringList all;
        for (const QQuickItem* card : cards())
            all << (card->parentItem()->parentItem()->property("isSelected").toBool() ? u"+"_s : u"-"_s);
        return all.join(QString());
    };
    ASSERT_TRUE(waitFor([&] { return cards().size() == 2; }));
    ASSERT_TRUE(waitFor([&] { return cards().last()->property("text") == u"Счётчик"_s; }));
    m_person->click(cards().last());
    ASSERT_TRUE(waitFor([&] { return artifact.isGenerating() && artifact.shownVersion() == 2; }));
    ASSERT_TRUE(becomes(u"artifactHeaderDetails"_s, "text", u"HTML · версия 2 · пишу…"_s));
    EXPECT_EQ(selected(), u"-+"_s);
    const auto whole = m_person->chat().messages()->messages()[1].content->at(1).as<Artifact>()->text;
    EXPECT_LT(artifact.artifact().text.size(), whole.size());
    cards().first()->forceActiveFocus(Qt::TabFocusReason); // it may stand above the window
    m_person->press(Qt::Key_Return);
    ASSERT_TRUE(becomes(u"artifactHeaderDetails"_s, "text", u"HTML"_s));
    EXPECT_EQ(selected(), u"+-"_s);
    EXPECT_TRUE(m_person->chat().isGenerating()) << "while the second is still written";
    EXPECT_EQ(artifact.artifact().text, whole);
    ASSERT_TRUE(answerEnds());
    cards().last()->forceActiveFocus(Qt::TabFocusReason);
    m_person->press(Qt::Key_Return);
    ASSERT_TRUE(becomes(u"artifactHeaderDetails"_s, "text", u"HTML · версия 2"_s));
    EXPECT_EQ(selected(), u"-+"_s);
}

}
}
