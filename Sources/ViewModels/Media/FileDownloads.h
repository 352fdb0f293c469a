#pragma once

#include "FileDownload.h"

#include <QHash>

#include <memory>

namespace Korvi {

// The files of answers that were asked for. A file keeps its state while its card is out of view.
class FileDownloads : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("owned by the application")

public:
    struct Dependencies {
        FileTransfer& transfer;
        Desktop& desktop;
    };

    // Empties the temporary place.
    FileDownloads(Dependencies dependencies, FileDownload::Places places, QObject* parent = nullptr);
    ~FileDownloads() override;

    // The one of that address; made when it is first asked for. `name` may be anything.
    Q_INVOKABLE Korvi::FileDownload* of(const QString& url, const QString& name);

    Q_INVOKABLE QString kind(const QString& name, const QString& mimetype) const; // "PDF", "Архив ZIP" ...
    Q_INVOKABLE QUrl suggested(const QString& name) const;                        // for a dialog that saves
    Q_INVOKABLE bool isOpenable(const QString& name) const;                       // it cannot start a program
    // A file that the client made itself; empty when it could not be written. Stands in the downloads folder.
    QString keep(const QString& name, const QByteArray& bytes) const;
    void show(const QString& path) const;

private:
    Dependencies m_dependencies;
    FileDownload::Places m_places;
    QHash<QString, std::shared_ptr<FileDownload>> m_downloads; // by address
};

}
