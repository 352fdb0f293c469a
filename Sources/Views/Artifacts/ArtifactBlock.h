#pragma once

#include "MessageContent.h"

#include <QObject>
#include <QVariant>
#include <QtQml/qqmlregistration.h>

namespace Korvi {

// The artifact of an answer, for those who show it.
class ArtifactBlock : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QVariant block READ block WRITE setBlock NOTIFY blockChanged) // a MessageContent
    Q_PROPERTY(QString artifactId READ artifactId NOTIFY blockChanged)
    Q_PROPERTY(QString title READ title NOTIFY blockChanged)
    Q_PROPERTY(QString kind READ kind NOTIFY blockChanged)

public:
    using QObject::QObject;

    QVariant block() const { return m_block; }
    void setBlock(const QVariant& block) {
        m_block = block;
        const auto content = block.value<MessageContent>();
        const auto* artifact = content.as<Artifact>();
        m_artifact = artifact ? *artifact : Artifact();
        emit blockChanged();
    }
    QString artifactId() const { return m_artifact.id; }
    QString title() const { return m_artifact.title; }
    QString kind() const { return m_artifact.kind; }

signals:
    void blockChanged();

private:
    QVariant m_block;
    Artifact m_artifact;
};

}
