#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace Korvi {

// What is done with an artifact of a kind: how it is called, looked at, coloured and saved.
class ArtifactKind : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged) // in any case
    Q_PROPERTY(QString label READ label NOTIFY nameChanged)             // for the reader
    Q_PROPERTY(Preview preview READ preview NOTIFY nameChanged)
    Q_PROPERTY(QString language READ language NOTIFY nameChanged)   // that its text is coloured by; may be empty
    Q_PROPERTY(QString extension READ extension NOTIFY nameChanged) // of a file with its text, without the dot
    Q_PROPERTY(QString symbol READ symbol NOTIFY nameChanged)

public:
    enum Preview {
        NoPreview, // its text is all there is
        Page,      // a web page, in the sandbox
        Diagram,
        Document, // Markdown
    };
    Q_ENUM(Preview)

    using QObject::QObject;

    static QString extensionOf(const QString& kind);

    QString name() const { return m_name; }
    void setName(const QString& name);
    QString label() const;
    Preview preview() const;
    QString language() const;
    QString extension() const { return extensionOf(m_name); }
    QString symbol() const;

    // The line below its title. The first version needs no number.
    Q_INVOKABLE static QString details(const QString& label, qint64 version, bool isGenerating);

signals:
    void nameChanged();

private:
    QString m_name;
};

}
