#pragma once

#include "Chat/ArtifactDraft.h"
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
    Q_PROPERTY(double version READ version NOTIFY blockChanged) // -1 without one
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
    double version() const { return static_cast<double>(m_artifact.version.value_or(-1)); }
    QString title() const { return ArtifactDraft::titleOf(m_artifact); }
    QString kind() const { return m_artifact.kind; }

signals:
    void blockChanged();

private:
    QVariant m_block;
    Artifact m_artifact;
};

}
