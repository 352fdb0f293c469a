#pragma once

#include <QObject>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

namespace Korvi {

// Which addresses an answer may load an image from: https anywhere, http on this machine. Others, files of this machine
// first of all, are never touched.
class ImageAddress : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(QUrl url READ url NOTIFY textChanged) // empty unless it may be loaded
    Q_PROPERTY(bool mayBeLoaded READ mayBeLoaded NOTIFY textChanged)

public:
    using QObject::QObject;

    QString text() const { return m_text; }
    void setText(const QString& text);
    QUrl url() const { return m_url; }
    bool mayBeLoaded() const { return !m_url.isEmpty(); }

signals:
    void textChanged();

private:
    QString m_text;
    QUrl m_url;
};

}
