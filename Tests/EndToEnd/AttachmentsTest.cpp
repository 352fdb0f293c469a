// Files and images with the real service: picked up, shown, sent, refused and sent again.
#include "LocalService.h"
#include "Person.h"
#include "WaitFor.h"

#include <QClipboard>
#include <QDropEvent>
#include <QGuiApplication>
#include <QMimeData>

#include <gtest/gtest.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;

class Attachments : public testing::Test {
protected:
    void SetUp() override {
        m_service.start({u"--demo-delay-ms"_s, u"1"_s});
        m_person = std::make_unique<Person>(m_service.port());
        m_person->startClient();
        ASSERT_TRUE(m_person->signIn(u"user@example.com"_s, [this] { return m_service.code(); }));
        ASSERT_TRUE(waitFor([this] { return m_person->chat().isConnected(); }));
    }

    QUrl makeFile(const QString& name, const QByteArray& content) const {
        QFile file(m_folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
        return QUrl::fromLocalFile(file.fileName());
    }
    QUrl makeImage(const QString& name) const {
        QImage image(320, 200, QImage::Format_RGB32);
        image.fill(Qt::darkCyan);
        EXPECT_TRUE(image.save(m_folder.filePath(name)));
        return QUrl::fromLocalFile(m_folder.filePath(name));
    }
    // In the middle of the window, as a file manager does it.
    void drop(const QList<QUrl>& urls) {
        QQuickWindow* window = m_person->see(u"composer"_s)->window();
        QMimeData data;
        data.setUrls(urls);
        const QPoint middle(window->width() / 2, window->height() / 3);
        QDragEnterEvent enter(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(window, &enter);
        QDragMoveEvent move(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(window, &move);
        EXPECT_TRUE(move.isAccepted());
        QDropEvent event(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(window, &event);
    }
    bool waiting(int count) {
        return waitFor([&] { return m_person->chat().pendingFileAttachments()->count() == count; });
    }
    bool answerEnds() {
        return waitFor([this] { return !m_person->chat().isGenerating(); }, std::chrono::seconds(60));
    }
    // The addresses that a message carries, images first.
    QStringList addresses(int row) {
        QStringList found;
        const ChatMessage& message = m_person->chat().messages()->messages().at(static_cast<std::size_t>(row));
        for (const MessageContent& block : message.content.value_or(std::vector<MessageContent>())) {
            if (const auto* image = block.as<MessageContent::Image>())
                found.append(image->url);
            else if (const auto* file = block.as<MessageContent::File>())
                found.append(file->url);
        }
        return found;
    }

    QTemporaryDir m_folder;
    LocalService m_service;
    std::unique_ptr<Person> m_person;
};

TEST_F(Attachments, WhatIsDroppedGoesWithTheMessageAndIsSeenAfterARestart) {
    drop({makeFile(u"отчёт.txt"_s, "Итоги года"), makeImage(u"снимок.png"_s)});
    ASSERT_TRUE(waiting(2));
    ASSERT_TRUE(m_person->waitToSee(u"attachmentChip"_s));
    EXPECT_EQ(m_person->focus(), u"composer"_s);
    m_person->ask(u"Что здесь?"_s);
    EXPECT_TRUE(m_person->waitToLose(u"attachmentChip"_s));
    ASSERT_TRUE(answerEnds());
    ASSERT_TRUE(m_person->waitToSee(u"sentImage"_s));
    ASSERT_TRUE(m_person->waitToSee(u"sentFile"_s));
    EXPECT_EQ(m_person->read(u"sentFile"_s), u"отчёт.txt"_s);
    EXPECT_TRUE(m_person->read(u"sentState"_s).contains(u"19 байт"_s)) << m_person->read(u"sentState"_s).toStdString();
    const QString service = u"http://127.0.0.1:%1/"_s.arg(m_service.port());
    ASSERT_EQ(addresses(0).size(), 2);
    EXPECT_TRUE(addresses(0).at(0).startsWith(service));
    EXPECT_TRUE(addresses(0).at(1).startsWith(service));

    m_person->quitClient();
    m_person->startClient();
    ASSERT_TRUE(waitFor([this] { return m_person->chat().chats()->count() == 1; }));
    m_person->chat().selectChat(m_person->chat().chats()->chats().front().id);
    ASSERT_TRUE(waitFor([this] { return m_person->chat().areMessagesLoaded(); }));
    EXPECT_TRUE(m_person->waitToSee(u"sentImage"_s));
    EXPECT_TRUE(m_person->waitToSee(u"sentFile"_s));
    ASSERT_TRUE(waitFor([this] { return m_person->see(u"sentImage"_s)->isEnabled(); })); // it is there
    ASSERT_TRUE(m_person->tabTo(u"sentImage"_s));
    m_person->press(Qt::Key_Return);
    EXPECT_TRUE(m_person->waitToSee(u"viewerPicture"_s));
}

TEST_F(Attachments, WhatIsTooLargeOrUnknownSaysSoInItsPlace) {
    const QUrl large = makeFile(u"большой.txt"_s, "x");
    QFile::resize(large.toLocalFile(), 10'000'001);
    const QUrl exact = makeFile(u"ровно.txt"_s, "x");
    QFile::resize(exact.toLocalFile(), 10'000'000);
    // What is fine beside it does not hide it.
    drop({large, makeFile(u"b.exe"_s, "x"), exact});
    ASSERT_TRUE(waiting(1));
    ASSERT_TRUE(m_person->waitToSee(u"validationError"_s));
    EXPECT_EQ(m_person->read(u"validationError"_s), u"Файл слишком большой. Максимум: 10 МБ"_s);
    m_person->type(u"а"_s);
    EXPECT_TRUE(m_person->waitToLose(u"validationError"_s));
    ASSERT_TRUE(m_person->waitToSee(u"attachmentChip"_s));

    m_person->press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(m_person->focus(), u"attachmentChip"_s);
    m_person->press(Qt::Key_Delete);
    EXPECT_TRUE(waiting(0));
    EXPECT_TRUE(waitFor([this] { return m_person->focus() == u"composer"_s; }));
    EXPECT_EQ(m_person->chat().currentInput(), u"а"_s);
}

TEST_F(Attachments, AFileThatDoesNotGoUpIsSentSeparately) {
    drop({makeFile(u"хороший.txt"_s, "1"), makeFile(u"плохой.txt"_s, "2")});
    ASSERT_TRUE(waiting(2));
    // The copy goes away behind the client's back, and comes again.
    const QString copy = m_person->chat().pendingFileAttachments()->attachments().back().localURL->toLocalFile();
    ASSERT_TRUE(QFile::rename(copy, copy + u"-away"_s));
    m_person->ask(u"Сравни"_s);
    ASSERT_TRUE(answerEnds());
    ASSERT_TRUE(m_person->waitToSee(u"sendSeparatelyButton"_s));
    EXPECT_EQ(m_person->chat().attachments()->failed()->count(), 1);
    ASSERT_TRUE(QFile::rename(copy + u"-away"_s, copy));
    m_person->type(u"черновик"_s);

    m_person->click(u"sendSeparatelyButton"_s);
    ASSERT_TRUE(answerEnds());
    ASSERT_EQ(m_person->chat().messages()->count(), 4);
    ASSERT_EQ(addresses(2).size(), 1);
    EXPECT_TRUE(addresses(2).front().startsWith(u"http://127.0.0.1"_s));
    EXPECT_TRUE(m_person->waitToLose(u"sendSeparatelyButton"_s));
    EXPECT_EQ(m_person->chat().currentInput(), u"черновик"_s);
    EXPECT_EQ(m_person->chat().attachments()->failed()->count(), 0);
}

TEST_F(Attachments, TheLargestFileGoesUp) {
    const QUrl exact = makeFile(u"ровно.txt"_s, "x");
    QFile::resize(exact.toLocalFile(), 10'000'000);
    drop({exact});
    ASSERT_TRUE(waiting(1));
    m_person->ask(u"Что здесь?"_s);
    ASSERT_TRUE(answerEnds());
    ASSERT_EQ(addresses(0).size(), 1);
    EXPECT_TRUE(addresses(0).front().startsWith(u"http://127.0.0.1"_s));
    EXPECT_EQ(m_person->chat().attachments()->failed()->count(), 0);
    EXPECT_TRUE(m_person->read(u"sentState"_s).contains(u"10 МБ"_s)) << m_person->read(u"sentState"_s).toStdString();
}

TEST_F(Attachments, AServiceThatIsKilledDuringAnUploadLosesNeitherQuestionNorFile) {
    drop({makeFile(u"отчёт.txt"_s, QByteArray(5'000'000, 'x'))});
    ASSERT_TRUE(waiting(1));
    m_service.freeze();
    m_person->ask(u"Что здесь?"_s);
    ASSERT_TRUE(m_person->waitToSee(u"uploadRing"_s));
    m_service.kill();
    ASSERT_TRUE(m_person->waitToSee(u"sendSeparatelyButton"_s));
    EXPECT_NE(m_person->read(u"sentState"_s), QString());
    m_service.start({u"--demo-delay-ms"_s, u"1"_s});
    ASSERT_TRUE(answerEnds()); // to the words
    EXPECT_EQ(m_person->readQuestions(), QStringList{u"Что здесь?"_s});
    m_person->click(u"sendSeparatelyButton"_s);
    ASSERT_TRUE(answerEnds());
    ASSERT_EQ(m_person->chat().messages()->count(), 4);
    ASSERT_EQ(addresses(2).size(), 1);
    EXPECT_TRUE(addresses(2).front().startsWith(u"http://127.0.0.1"_s));
    EXPECT_TRUE(m_person->waitToLose(u"sendSeparatelyButton"_s));
}

TEST_F(Attachments, AFileWithoutWordsWaitsInTheComposerAgain) {
    drop({makeFile(u"отчёт.txt"_s, QByteArray(5'000'000, 'x'))});
    ASSERT_TRUE(waiting(1));
    m_service.freeze();
    m_person->press(Qt::Key_Return);
    ASSERT_TRUE(m_person->waitToSee(u"uploadRing"_s));
    m_service.kill();
    ASSERT_TRUE(m_person->waitToSee(u"attachmentChip"_s));
    EXPECT_EQ(m_person->chat().messages()->count(), 0);
    m_service.start({u"--demo-delay-ms"_s, u"1"_s});
    ASSERT_TRUE(waitFor([this] { return m_person->chat().isConnected(); }, std::chrono::seconds(30)));
    m_person->press(Qt::Key_Return);
    ASSERT_TRUE(waitFor([this] { return m_person->chat().messages()->count() == 2; }));
    ASSERT_TRUE(answerEnds());
    ASSERT_EQ(addresses(0).size(), 1);
    EXPECT_TRUE(addresses(0).front().startsWith(u"http://127.0.0.1"_s));
}

TEST_F(Attachments, WhatIsCopiedIsPasted) {
    QClipboard* clipboard = QGuiApplication::clipboard();
    QImage image(8, 8, QImage::Format_RGB32);
    image.fill(Qt::red);
    clipboard->setImage(image);
    m_person->type(u"поправь"_s);
    m_person->press(Qt::Key_V, Qt::ControlModifier);
    ASSERT_TRUE(m_person->waitToSee(u"editImageChip"_s));
    EXPECT_EQ(m_person->chat().currentInput(), u"поправь"_s);
    m_person->press(Qt::Key_Backtab, Qt::ShiftModifier);
    m_person->press(Qt::Key_Delete);
    EXPECT_TRUE(m_person->waitToLose(u"editImageChip"_s));

    auto* files = new QMimeData; // a file manager gives the paths as text, too
    files->setUrls({makeFile(u"a.txt"_s, "1"), makeFile(u"b.txt"_s, "2")});
    files->setText(u"/tmp/a.txt\n/tmp/b.txt"_s);
    clipboard->setMimeData(files);
    ASSERT_TRUE(waitFor([this] { return m_person->focus() == u"composer"_s; }));
    m_person->press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_TRUE(waiting(2));
    EXPECT_EQ(m_person->chat().currentInput(), u"поправь"_s);

    clipboard->setText(u" это"_s);
    m_person->press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(m_person->chat().currentInput(), u"поправь это"_s);
}

}
}
