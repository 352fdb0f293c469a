#pragma once

#include "Artifact.h"

#include <QObject>
#include <QVariant>
#include <QtQml/qqmlregistration.h>

namespace Korvi {

class MessageListModel;

// The artifact that is looked at, found again in the conversation whenever that changes. While it grows, the text is
// what there is of it. What was shown last stays when the conversation does not hold it any more.
class ArtifactSelection : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("owned by ChatViewModel")
    Q_PROPERTY(QString selectedArtifactId READ selectedArtifactId WRITE select NOTIFY selectedArtifactIdChanged)
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY selectedArtifactIdChanged)
    // Of the one that is shown: the service's, when what was selected had a temporary one. Empty when none is.
    Q_PROPERTY(QString shownArtifactId READ shownArtifactId NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString kind READ kind NOTIFY changed)
    Q_PROPERTY(QString kindLabel READ kindLabel NOTIFY changed)
    // A SharedText: the parts that show it take what is new of it.
    Q_PROPERTY(QVariant text READ text NOTIFY changed)
    Q_PROPERTY(bool isGenerating READ isGenerating NOTIFY changed)

public:
    explicit ArtifactSelection(const MessageListModel& messages, QObject* parent = nullptr);

    QString selectedArtifactId() const { return m_id; }
    bool isOpen() const { return !m_id.isEmpty(); }
    Q_INVOKABLE void select(const QString& id); // empty closes it
    const Artifact& artifact() const { return m_artifact; }
    QString shownArtifactId() const { return m_artifact.id; }
    QString title() const { return m_artifact.title; }
    QString kind() const { return m_artifact.kind; }
    QString kindLabel() const;
    QVariant text() const { return QVariant::fromValue(m_artifact.text); }
    bool isGenerating() const { return m_isGenerating; }

    // The open conversation's answer is running.
    void setAnswerRunning(bool isRunning);
    // What a kind is called, for cards.
    Q_INVOKABLE static QString labelOf(const QString& kind);

signals:
    void selectedArtifactIdChanged();
    void changed();

private:
    void look();

    const MessageListModel& m_messages;
    QString m_id;
    Artifact m_artifact; // as it was seen last
    bool m_isAnswerRunning = false;
    bool m_isGenerating = false;
};

}
