#pragma once

#include "TaskScope.h"

#include <QObject>
#include <QProperty>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

namespace Korvi {

class Desktop;
class FileTransfer;

// One file of an answer on its way to this machine, and what is done with it then.
class FileDownload : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by FileDownloads")
    Q_PROPERTY(bool isRunning READ isRunning NOTIFY isRunningChanged BINDABLE bindableIsRunning)
    Q_PROPERTY(double progress READ progress NOTIFY progressChanged BINDABLE bindableProgress) // 0 to 1; -1: unknown
    Q_PROPERTY(QString size READ size NOTIFY sizeChanged BINDABLE bindableSize)     // empty until it is known
    Q_PROPERTY(QString error READ error NOTIFY errorChanged BINDABLE bindableError) // empty without one
    // Where the user had it saved; empty until then.
    Q_PROPERTY(QString savedPath READ savedPath NOTIFY savedPathChanged BINDABLE bindableSavedPath)
    Q_PROPERTY(QString savedName READ savedName NOTIFY savedPathChanged)
    // The file on this machine, once it was fetched to be looked at; empty until then.
    Q_PROPERTY(QUrl fetched READ fetched NOTIFY fetchedPathChanged)

public:
    struct Places {
        QString folder;    // where the user's downloads go
        QString temporary; // for files that are only looked at; emptied at the next start
    };

    FileDownload(FileTransfer& transfer, Desktop& desktop, Places places, QUrl url, QString name);

    // Fetches the file, if it is not here yet, and shows it in the desktop's program for its kind. What may start a
    // program is put into the downloads and shown in its folder instead.
    Q_INVOKABLE void open();
    // To be played or shown by the client itself, from `fetched`.
    Q_INVOKABLE void fetch();
    // Into the downloads folder, under a free name.
    Q_INVOKABLE void save();
    Q_INVOKABLE void saveAs(const QUrl& file);
    Q_INVOKABLE void showInFolder(); // saves it first if need be
    Q_INVOKABLE void cancel();

    bool isRunning() const { return m_isRunning; }
    double progress() const { return m_progress; }
    QString size() const { return m_size; }
    QString error() const { return m_error; }
    QString savedPath() const { return m_savedPath; }
    QString savedName() const; // the last component of the path
    QUrl fetched() const;

    QBindable<bool> bindableIsRunning() { return &m_isRunning; }
    QBindable<double> bindableProgress() { return &m_progress; }
    QBindable<QString> bindableSize() { return &m_size; }
    QBindable<QString> bindableError() { return &m_error; }
    QBindable<QString> bindableSavedPath() { return &m_savedPath; }

signals:
    void isRunningChanged();
    void progressChanged();
    void sizeChanged();
    void errorChanged();
    void savedPathChanged();
    void fetchedPathChanged();

private:
    enum class Then { open, play, keep, show };

    void start(QString path, Then then);
    QString here() const;           // where it lies already; empty where it does not
    QString temporaryPlace() const; // for a file that is only looked at
    Task<void> bring(QString path, Then then);
    void done(const QString& path, Then then);

    FileTransfer& m_transfer;
    Desktop& m_desktop;
    Places m_places;
    QUrl m_url;
    QString m_name; // safe as the name of a file

    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(FileDownload, bool, m_isRunning, false, &FileDownload::isRunningChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(FileDownload, double, m_progress, -1, &FileDownload::progressChanged)
    Q_OBJECT_BINDABLE_PROPERTY(FileDownload, QString, m_size, &FileDownload::sizeChanged)
    Q_OBJECT_BINDABLE_PROPERTY(FileDownload, QString, m_error, &FileDownload::errorChanged)
    Q_OBJECT_BINDABLE_PROPERTY(FileDownload, QString, m_savedPath, &FileDownload::savedPathChanged)
    Q_OBJECT_BINDABLE_PROPERTY(FileDownload, QString, m_fetchedPath, &FileDownload::fetchedPathChanged)

    TaskScope m_scope; // last: its tasks end before anything they use
};

}
