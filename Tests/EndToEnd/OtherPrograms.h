#pragma once

#include <QObject>
#include <QTemporaryDir>
#include <QUrl>

namespace Korvi::Test {

// The desktop's other programs: remembers what the client has them open, and opens nothing.
class OtherPrograms : public QObject {
    Q_OBJECT

public:
    OtherPrograms();
    ~OtherPrograms() override;

    QList<QUrl> pages;         // what the browser was asked for
    QStringList files() const; // and what xdg-open: paths of files and folders

public slots:
    void openPage(const QUrl& url) { pages.append(url); }

private:
    QTemporaryDir m_folder;
    QByteArray m_path; // PATH as it was
};

}
