#pragma once

#include "Backend.h"
#include "Chat/AttachmentIntake.h"
#include "Chat/AttachmentUploader.h"
#include "FakeClipboard.h"
#include "FakeRandom.h"
#include "FakeWorkers.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace Korvi::Test {

// The way of a file from the user to the service: real files, the far side in the test's hands.
struct TestAttachments {
    explicit TestAttachments(Backend& backend)
        : folder(backend.folder)
        , uploader(backend.client, workers, random) {}

    QString intakePath() const { return folder.filePath(QStringLiteral("attachments")); }
    QStringList copies() const { return QDir(intakePath()).entryList(QDir::Files, QDir::Name); }
    QUrl makeFile(const QString& name, const QByteArray& content) const {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
        return QUrl::fromLocalFile(file.fileName());
    }

    const QTemporaryDir& folder;
    FakeRandom random;
    FakeWorkers workers;
    FakeClipboard clipboard;
    AttachmentIntake intake{intakePath(), workers, random};
    AttachmentUploader uploader;
};

}
