#include "Backend/MultipartBody.h"
#include "Chat/AttachmentIntake.h"
#include "Chat/AttachmentUploader.h"
#include "SupportedFileTypes.h"
#include "TestAttachments.h"

#include <QBuffer>
#include <QImage>

#include <gmock/gmock.h>

#include <sys/stat.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using testing::ElementsAre;
using Category = FileTypeCategory;

TEST(SupportedFileTypes, SayWhatMayBeAttached) {
    struct Row {
        const char* name;
        qint64 size;
        std::optional<QString> type;
        bool isAIPlus;
        const char* error; // "" when it may
    };
    const std::optional<QString> none;
    const Row rows[]{
        {"a.PNG", 10'000'000, none, false, ""},
        {"a.png", 10'000'001, none, true, "Файл слишком большой. Максимум: 10 МБ"},
        {"a.mov", 5, none, false, "Видео и аудио доступны только в режиме AI+"},
        {"a.mov", 50'000'000, none, false, "Видео и аудио доступны только в режиме AI+"},
        {"a.mov", 20'000'000, none, true, ""},
        {"a.mp3", 20'000'001, none, true, "Файл слишком большой. Максимум: 20 МБ"},
        {"README", 5, u"text/plain"_s, false, ""},
        {"README", 5, none, false, "Файл без расширения не поддерживается"},
        {"a.exe", 5, none, false, "exe не поддерживается"},
        {"a.xyz", 5, u"application/vnd.oasis.opendocument.text"_s, false, ""},
        {".gitignore", 5, none, false, ""},
        {"a.tar.gz", 5, u"application/gzip"_s, false, "gz не поддерживается"},
    };
    for (const Row& row : rows) {
        const auto result =
            SupportedFileTypes::validateFile(QString::fromUtf8(row.name), row.size, row.type, row.isAIPlus);
        EXPECT_EQ(result.errorMessage().toStdString(), row.error) << row.name << ' ' << row.size;
    }
    EXPECT_EQ(SupportedFileTypes::getCategory(u"x"_s, u"text/x"_s), Category::code);
    EXPECT_EQ(SupportedFileTypes::getCategory(u"x.cfg"_s, u"image/png"_s), Category::document);
    EXPECT_EQ(SupportedFileTypes::getCategory(u"x.toml"_s, {}), Category::code);
    EXPECT_TRUE(SupportedFileTypes::isExtensionSupported(u"Heic"_s, false));
    EXPECT_FALSE(SupportedFileTypes::isExtensionSupported(u"flac"_s, false));
    EXPECT_TRUE(SupportedFileTypes::isExtensionSupported(u"flac"_s, true));
    EXPECT_FALSE(SupportedFileTypes::isExtensionSupported(u"png jpg"_s, true));
    EXPECT_FALSE(SupportedFileTypes::isExtensionSupported({}, true));
    EXPECT_EQ(SupportedFileTypes::preferredMIMEType(u"JPG"_s), u"image/jpeg"_s);
    EXPECT_EQ(SupportedFileTypes::preferredMIMEType(u"nonsense"_s), u"application/octet-stream"_s);
    for (const auto& [bytes, text] :
        std::initializer_list<std::pair<qint64, const char*>>{{0, "0 байт"}, {999, "999 байт"}, {1000, "1 КБ"},
            {1'550'000, "1,6 МБ"}, {10'000'000, "10 МБ"}, {1'250'000'000, "1,25 ГБ"}})
        EXPECT_EQ(SupportedFileTypes::byteCount(bytes).toStdString(), text);
}

TEST(MultipartBody, ReadsTheSameInAnySteps) {
    const QByteArray content = QByteArray("0123456789").repeated(10);
    const auto made = [&] {
        auto buffer = std::make_unique<QBuffer>();
        buffer->setData(content);
        buffer->open(QIODevice::ReadOnly);
        return std::make_unique<MultipartBody>(std::move(buffer), u"a\"\r\nX: 1.txt"_s, u"text/plain"_s, "BOUND");
    };
    const QByteArray expected =
        "--BOUND\r\nContent-Disposition: form-data; name=\"file\"; filename=\"a%22%0D%0AX: 1.txt\"\r\n"
        "Content-Type: text/plain\r\n\r\n" +
        content + "\r\n--BOUND--\r\n";
    EXPECT_EQ(made()->size(), expected.size());
    EXPECT_EQ(made()->readAll(), expected);
    for (const qint64 step : {1, 7, 64, 1000}) {
        const auto body = made();
        QByteArray read;
        while (!body->atEnd())
            read += body->read(step);
        EXPECT_EQ(read, expected) << step;
        EXPECT_TRUE(body->seek(90)); // a redirect begins anew
        EXPECT_EQ(body->readAll(), expected.sliced(90)) << step;
    }
}

class AttachmentsTest : public testing::Test, public Backend {
protected:
    AttachmentsTest() {
        signIn("tok");
        QImage image(8, 8, QImage::Format_ARGB32);
        image.fill(Qt::transparent);
        QBuffer buffer(&png);
        image.save(&buffer, "PNG");
    }
    static ChatFileAttachment attachment(
        const QUrl& url, Category category, std::optional<QString> type = std::nullopt) {
        static unsigned count = 0;
        ChatFileAttachment made;
        made.id = QUuid(++count, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1);
        made.filename = url.fileName();
        made.category = category;
        made.localURL = url;
        made.mimeType = std::move(type);
        return made;
    }
    std::unique_ptr<Running<AttachmentUploader::Uploaded>> upload(std::vector<ChatFileAttachment> list) {
        return std::make_unique<Running<AttachmentUploader::Uploaded>>([this, list] {
            return files.uploader.uploadAttachments(
                list, [this](const ChatFileAttachment& each) { progress.push_back(each.uploadProgress); });
        });
    }
    QByteArray form() { return http.open(u"/storage/upload"_s).request.bodyDevice->readAll(); }

    TestAttachments files{*this};
    QByteArray png;
    std::vector<double> progress;
};

TEST_F(AttachmentsTest, GoUpOneAfterTheOtherAndFailedOnesAreLeftOut) {
    const auto running = upload({attachment(files.makeFile(u"a.txt"_s, "text"), Category::code, u"text/plain"_s),
        attachment(files.makeFile(u"b.pdf"_s, "pdf"), Category::document),
        attachment(files.makeFile(u"c.png"_s, png), Category::image, u"image/png"_s),
        attachment(QUrl::fromLocalFile(folder.filePath(u"gone.txt"_s)), Category::code)});
    EXPECT_EQ(http.count(), 1U);
    const HttpRequest& first = http.open(u"/storage/upload"_s).request;
    EXPECT_EQ(first.method, "POST");
    EXPECT_EQ(first.url.toString(), u"https://service.example:8443/api/v1/storage/upload"_s);
    EXPECT_EQ(http.last().header("Authorization"), "Bearer tok");
    const QByteArray boundary = http.last().header("Content-Type").split('=').last();
    EXPECT_EQ(http.last().header("Content-Type"), "multipart/form-data; boundary=" + boundary);
    EXPECT_EQ(form(),
        "--" + boundary +
            "\r\nContent-Disposition: form-data; name=\"file\"; filename=\"a.txt\"\r\nContent-Type: text/plain"
            "\r\n\r\ntext\r\n--" +
            boundary + "--\r\n");
    first.onUploadProgress(50, 100);
    http.last().answer(R"({"url":"https://s/a"})");
    EXPECT_TRUE(form().contains("Content-Type: application/octet-stream\r\n\r\npdf\r\n"));
    http.last().answer(R"({"message":"Слишком много"})", 500);
    const QByteArray image = form();
    EXPECT_TRUE(image.contains("filename=\"image.jpg\"\r\nContent-Type: image/jpeg\r\n\r\n\xff\xd8"));
    http.last().answer(R"({"url":"https://s/c"})");
    ASSERT_TRUE(running->isDone());
    const AttachmentUploader::Uploaded& uploaded = running->value();
    EXPECT_EQ(uploaded.imageUrls, QStringList{u"https://s/c"_s});
    ASSERT_EQ(uploaded.fileUrls.size(), 1U);
    EXPECT_EQ(uploaded.fileUrls[0].url + uploaded.fileUrls[0].filename + uploaded.fileUrls[0].mimetype,
        u"https://s/aa.txttext/plain"_s);
    ASSERT_EQ(uploaded.attachments.size(), 4U);
    EXPECT_FALSE(uploaded.attachments[0].uploadError);
    EXPECT_TRUE(uploaded.attachments[1].uploadError->contains(u"Слишком много"_s))
        << uploaded.attachments[1].uploadError->toStdString();
    EXPECT_TRUE(uploaded.attachments[3].uploadError);
    EXPECT_THAT(progress, testing::Contains(0.5));
}

TEST_F(AttachmentsTest, AnImageThatCannotBeReadGoesUpAsItIs) {
    const auto running =
        upload({attachment(files.makeFile(u"a.heic"_s, "no image"), Category::image, u"image/heic"_s)});
    EXPECT_TRUE(form().contains("filename=\"a.heic\"\r\nContent-Type: image/heic\r\n\r\nno image\r\n"));
    // What is transparent becomes white, not black.
    const auto jpeg = jpegOf(files.makeFile(u"t.png"_s, png).toLocalFile(), 80);
    ASSERT_TRUE(jpeg);
    EXPECT_EQ(QImage::fromData(*jpeg).pixelColor(4, 4), QColor(Qt::white));
}

TEST_F(AttachmentsTest, AreCopiedWhereOnlyTheUserCanReadThem) {
    const QUrl original = files.makeFile(u"отчёт.txt"_s, "text");
    const auto taken = std::make_unique<Running<std::optional<AttachmentIntake::Taken>>>(
        [&] { return files.intake.takeFile(original); });
    const AttachmentIntake::Taken file = taken->value().value();
    EXPECT_EQ(file.filename, u"отчёт.txt"_s);
    EXPECT_EQ(file.size, 4);
    EXPECT_EQ(file.mimeType, u"text/plain"_s);
    EXPECT_NE(file.localURL, original);
    struct stat status {};
    ASSERT_EQ(::stat(file.localURL.toLocalFile().toUtf8().constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
    ASSERT_EQ(::stat(files.intakePath().toUtf8().constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0700U);

    const QUrl longName = files.makeFile(QString(120, u'я') + u".txt"_s, "text");
    const Running<std::optional<AttachmentIntake::Taken>> longest([&] { return files.intake.takeFile(longName); });
    EXPECT_TRUE(files.intake.owns(longest.value()->localURL)) << "a name that is as long as names may be";
    EXPECT_EQ(longest.value()->filename, longName.fileName());
    files.intake.discard(longest.value()->localURL);

    const Running<std::optional<AttachmentIntake::Taken>> data(
        [&] { return files.intake.takeImageData("bytes", u"image/jpeg"_s); });
    EXPECT_TRUE(data.value()->localURL.fileName().endsWith(u".jpg"_s));
    const Running<std::optional<QUrl>> pasted([&] { return files.intake.takeImage(QImage::fromData(png)); });
    EXPECT_TRUE(pasted.value()->fileName().startsWith(u"paste_"_s));
    EXPECT_EQ(files.copies().size(), 3);

    files.intake.discard(original); // not ours
    files.intake.discard(file.localURL);
    EXPECT_TRUE(QFile::exists(original.toLocalFile()));
    EXPECT_EQ(files.copies().size(), 2);
    const AttachmentIntake next(files.intakePath(), files.workers, files.random);
    EXPECT_EQ(files.copies().size(), 0) << "left by the last run";
}

TEST_F(AttachmentsTest, AFileWithoutExtensionIsWhatItHolds) {
    for (const auto& [name, bytes, type] : std::initializer_list<std::tuple<QString, QByteArray, QString>>{
             {u"README"_s, "Прочти меня.\n", u"text/plain"_s}, {u"Makefile"_s, "all:\n\tcc a.c\n", u"text/plain"_s},
             {u"run"_s, "#!/bin/sh\necho\n", u"text/plain"_s}, {u"picture"_s, png, u"image/png"_s}}) {
        const QUrl url = files.makeFile(name, bytes);
        const Running<std::optional<AttachmentIntake::Taken>> taken([&] { return files.intake.takeFile(url); });
        EXPECT_EQ(taken.value()->mimeType, type) << name.toStdString();
    }
}

TEST_F(AttachmentsTest, WhatIsNoFileOrTooLargeIsNotCopied) {
    ASSERT_EQ(::mkfifo(folder.filePath(u"pipe.txt"_s).toUtf8().constData(), 0600), 0);
    for (const QUrl& url : {QUrl::fromLocalFile(folder.filePath(u"pipe.txt"_s)), QUrl::fromLocalFile(folder.path()),
             QUrl::fromLocalFile(folder.filePath(u"none.txt"_s)), QUrl(u"https://a.example/b.txt"_s)}) {
        const Running<std::optional<AttachmentIntake::Taken>> taken([&] { return files.intake.takeFile(url); });
        EXPECT_FALSE(taken.value()) << url.toString().toStdString();
    }
    QFile large(folder.filePath(u"large.mp4"_s));
    ASSERT_TRUE(large.open(QIODevice::WriteOnly) && large.resize(20'000'001));
    const QUrl url = QUrl::fromLocalFile(large.fileName());
    const Running<std::optional<AttachmentIntake::Taken>> taken([&] { return files.intake.takeFile(url); });
    EXPECT_EQ(taken.value()->size, 20'000'001);
    EXPECT_EQ(taken.value()->localURL, url);
    EXPECT_EQ(files.copies().size(), 0);
}

}
}
