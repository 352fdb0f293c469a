#include "Backend.h"
#include "Chat/ArtifactExport.h"
#include "Chat/ChatService.h"
#include "Desktop.h"
#include "FakeRandom.h"
#include "FakeSocket.h"
#include "FileTransfer.h"
#include "Media/FileDownloads.h"
#include "Media/FileNames.h"
#include "PdfPrinter.h"

#include <QDir>
#include <QTemporaryDir>

#include <gmock/gmock.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using testing::ElementsAre;
using testing::IsEmpty;

class FakeDesktop : public Desktop {
public:
    bool openFile(const QString& path) override {
        opened.append(QFileInfo(path).fileName());
        return hasProgram;
    }
    void showInFolder(const QString& path) override { shown.append(path); }

    QStringList opened;
    QStringList shown;
    bool hasProgram = true;
};

class FakeTransfer : public FileTransfer {
public:
    Async<void> download(QUrl url, QString path, TransferProgress progress) override {
        urls.append(url.toString());
        last = path;
        told = std::move(progress);
        resolver = {};
        return resolver.async();
    }
    void finish(const QByteArray& bytes) {
        QFile file(last);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        file.close();
        resolver.resolve();
    }

    QStringList urls;
    QString last;
    TransferProgress told;
    Resolver<void> resolver;
};

class FilesTest : public testing::Test {
protected:
    QString inDownloads(const QString& name) const { return folder.filePath(u"downloads/"_s + name); }

    const QTemporaryDir folder;
    FakeDesktop desktop;
    FakeTransfer transfer;
    FileDownloads files{{transfer, desktop}, {folder.filePath(u"downloads"_s), folder.filePath(u"opened"_s)}};
};

TEST(FileNamesTest, AreOnesThatAFolderCanHold) {
    struct Case {
        QString from;
        QString to;
    };
    for (const Case& one : {
             Case{u"отчёт.pdf"_s, u"отчёт.pdf"_s},
             Case{u"../../.ssh/authorized_keys"_s, u"_.._.ssh_authorized_keys"_s},
             Case{u".bashrc"_s, u"bashrc"_s},
             Case{u"a\nb\tc.txt"_s, u"abc.txt"_s},
             Case{u"invoice\u202Efdp.exe"_s, u"invoicefdp.exe"_s},
             Case{u"C:\\x\\y.doc"_s, u"C__x_y.doc"_s},
             Case{u" .. "_s, u"файл"_s},
             Case{QString(), u"файл"_s},
         })
        EXPECT_EQ(safeFileName(one.from, u"файл"_s), one.to);
    const QTemporaryDir place;
    for (const QString& letter : {u"я"_s, u"漢"_s, u"😀"_s, u"a"_s}) {
        const QString longName = safeFileName(letter.repeated(500) + u".pdf"_s, u"файл"_s);
        EXPECT_TRUE(longName.endsWith(letter + u".pdf"_s)) << longName.toStdString();
        for (int i = 0; i < 3; ++i) {
            QFile file(freePath(place.path(), longName));
            EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << file.fileName().toStdString();
        }
    }
    EXPECT_EQ(safeFileName(QString(1'000'000, u'.') + u'x' + QString(1'000'000, u' '), u"файл"_s), u"x"_s);
    QFile(place.filePath(u"100%1 %3.txt"_s)).open(QIODevice::WriteOnly);
    EXPECT_EQ(freePath(place.path(), u"100%1 %3.txt"_s), place.filePath(u"100%1 %3 (2).txt"_s));
}

TEST_F(FilesTest, AFileIsFetchedOnceAndOpened) {
    FileDownload* file = files.of(u"https://h/a"_s, u"отчёт.pdf"_s);
    EXPECT_EQ(files.of(u"https://h/a"_s, u"отчёт.pdf"_s), file);
    file->open();
    file->open();
    EXPECT_TRUE(file->isRunning());
    transfer.told(50, 200);
    EXPECT_DOUBLE_EQ(file->progress(), 0.25);
    transfer.finish("pdf");
    EXPECT_FALSE(file->isRunning());
    file->open();
    EXPECT_THAT(transfer.urls, ElementsAre(u"https://h/a"_s));
    EXPECT_THAT(desktop.opened, ElementsAre(u"отчёт.pdf"_s, u"отчёт.pdf"_s));
    EXPECT_EQ(file->savedPath(), QString());

    desktop.hasProgram = false;
    file->open();
    EXPECT_FALSE(file->error().isEmpty());
}

TEST_F(FilesTest, NothingThatMayStartAProgramIsOpened) {
    for (const QString& name :
        {u"run.sh"_s, u"Game.AppImage"_s, u"link.DESKTOP"_s, u"setup.exe"_s, u"a.pdf.desktop"_s}) {
        EXPECT_FALSE(files.isOpenable(name));
        files.of(u"https://h/"_s + name, name)->open();
        transfer.finish("x");
        EXPECT_EQ(desktop.shown.last(), inDownloads(name));
    }
    EXPECT_THAT(desktop.opened, IsEmpty());
}

TEST_F(FilesTest, SavingKeepsWhatIsThereAndTellsWhatWentWrong) {
    FileDownload* file = files.of(u"https://h/a"_s, u"a.txt"_s);
    file->save();
    transfer.finish("1");
    EXPECT_EQ(file->savedName(), u"a.txt"_s);
    file->save();
    transfer.finish("2");
    EXPECT_EQ(file->savedPath(), inDownloads(u"a (2).txt"_s));

    file->save();
    transfer.resolver.fail(URLError(URLError::Code::other, u"Файла больше нет на сервере."_s));
    EXPECT_EQ(file->error(), u"Файла больше нет на сервере."_s);
    EXPECT_EQ(file->savedName(), u"a (2).txt"_s);
    file->saveAs(QUrl::fromLocalFile(folder.filePath(u"elsewhere.txt"_s)));
    EXPECT_EQ(file->error(), QString());
    file->cancel();
    EXPECT_FALSE(file->isRunning());
}

TEST_F(FilesTest, WhatIsPlayedHereIsFetchedOnce) {
    FileDownload* file = files.of(u"https://h/v.webm"_s, u"v.webm"_s);
    file->fetch();
    EXPECT_EQ(file->fetched(), QUrl());
    transfer.finish("1");
    ASSERT_TRUE(QFileInfo::exists(file->fetched().toLocalFile()));
    EXPECT_THAT(desktop.opened, IsEmpty());
    EXPECT_EQ(file->savedName(), QString());
    file->fetch();
    file->open();
    EXPECT_EQ(transfer.urls.size(), 1);
    EXPECT_THAT(desktop.opened, ElementsAre(u"v.webm"_s));
}

class FakePrinter : public PdfPrinter {
public:
    Async<QByteArray> print(QString kind, QString, QString) override {
        kinds.append(kind);
        resolver = {};
        return resolver.async();
    }
    QStringList kinds;
    Resolver<QByteArray> resolver;
};

class ArtifactExportTest : public testing::Test, public Backend {
protected:
    ArtifactExportTest() { signIn("tok"); }

    FakeRandom random;
    FakeWebSocketTransport sockets;
    ChatService chatService{{client, sockets, virtualTime, random}};
    FakeDesktop desktop;
    FakePrinter printer;
    ArtifactExport files{{chatService, printer, desktop}};
};

TEST_F(ArtifactExportTest, APdfIsThereUnderTheTitleAndCanBeHandedOn) {
    files.downloadPDF(Artifact{u"a"_s, u"План: 1/2"_s, u"HTML"_s, u"<p>"_s, {}}, 5);
    EXPECT_TRUE(files.isDownloadingPDF());
    EXPECT_THAT(printer.kinds, ElementsAre(u"html"_s));
    printer.resolver.resolve(QByteArray("%PDF"));
    EXPECT_FALSE(files.isDownloadingPDF());
    EXPECT_TRUE(files.showShareSheet());
    EXPECT_EQ(QFileInfo(files.pdfURL()).fileName(), u"План_ 1_2.pdf"_s);
    files.openPDF();
    EXPECT_THAT(desktop.opened, ElementsAre(u"План_ 1_2.pdf"_s));
    files.dismiss();
    EXPECT_FALSE(files.showShareSheet());
}

TEST_F(ArtifactExportTest, LatexIsSetByTheService) {
    http.answer(u"/chats/5/artifacts/a/1/pdf"_s, "%PDF", 200, "application/pdf");
    files.downloadPDF(Artifact{u"a"_s, QString(), u"LaTeX"_s, u"x"_s, {}}, 5);
    EXPECT_THAT(printer.kinds, IsEmpty());
    EXPECT_EQ(QFileInfo(files.pdfURL()).fileName(), u"Artifact.pdf"_s);

    files.downloadPDF(Artifact{u"a"_s, QString(), u"latex"_s, u"x"_s, {}}, -1);
    EXPECT_FALSE(files.showShareSheet());
    EXPECT_FALSE(files.error().isEmpty());
}

TEST_F(ArtifactExportTest, AFailureIsTold) {
    files.downloadPDF(Artifact{u"a"_s, u"t"_s, u"svg"_s, u"x"_s, {}}, 5);
    printer.resolver.fail(PrintError(u"Не удалось."_s));
    EXPECT_FALSE(files.isDownloadingPDF());
    EXPECT_EQ(files.error(), u"Не удалось."_s);
    EXPECT_FALSE(files.showShareSheet());
}

}
}
