#pragma once

#include <QHash>
#include <QWebEngineUrlSchemeHandler>

namespace Korvi {

// Serves the private scheme: pages that were given to it, and the files of the bundle below "/npm/".
class BundleHandler : public QWebEngineUrlSchemeHandler {
    Q_OBJECT

public:
    // Before the application object is made.
    static void registerScheme();

    // `folder` is the bundle; the libraries stand in its "npm".
    explicit BundleHandler(const QString& folder, QObject* parent = nullptr);

    // The page's address from now on.
    QUrl addPage(const QString& name, const QString& html);

    void requestStarted(QWebEngineUrlRequestJob* job) override;

private:
    QString m_folder;
    QHash<QString, QByteArray> m_pages; // by path
};

}
