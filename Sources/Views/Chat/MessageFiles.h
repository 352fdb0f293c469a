#pragma once

#include <QObject>
#include <QVariant>
#include <QtQml/qqmlregistration.h>

namespace Korvi {

// What a message of the user carries besides its text, in the order of its blocks.
class MessageFiles : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QVariant content READ content WRITE setContent NOTIFY contentChanged) // a MessageHandle
    Q_PROPERTY(QStringList images READ images NOTIFY filesChanged)                   // addresses
    Q_PROPERTY(QVariantList files READ files NOTIFY filesChanged)                    // { url, filename, mimetype }

public:
    using QObject::QObject;

    QVariant content() const { return m_content; }
    void setContent(const QVariant& content);
    QStringList images() const { return m_images; }
    QVariantList files() const { return m_files; }

signals:
    void contentChanged();
    void filesChanged();

private:
    QVariant m_content;
    QStringList m_images;
    QVariantList m_files;
};

}
