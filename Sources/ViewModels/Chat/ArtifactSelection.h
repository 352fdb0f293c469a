#pragma once

#include "Chat/ArtifactFinder.h"

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
    Q_PROPERTY(QString selectedArtifactId READ selectedArtifactId NOTIFY selectedArtifactIdChanged)
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY selectedArtifactIdChanged)
    // Of the one that is shown. Empty and -1 when none is.
    Q_PROPERTY(QString shownArtifactId READ shownArtifactId NOTIFY changed)
    Q_PROPERTY(double shownVersion READ shownVersion NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString kind READ kind NOTIFY changed)
    Q_PROPERTY(QString kindLabel READ kindLabel NOTIFY changed)
    // A SharedText: the parts that show it take what is new of it.
    Q_PROPERTY(QVariant text READ text NOTIFY changed)
    Q_PROPERTY(bool isGenerating READ isGenerating NOTIFY changed)

public:
    explicit ArtifactSelection(const MessageListModel& messages, QObject* parent = nullptr);

    QString selectedArtifactId() const { return m_name.id; }
    bool isOpen() const { return !m_name.id.isEmpty(); }
    // `version` below 0: of one that has none.
    Q_INVOKABLE void select(const QString& id, qint64 version);
    Q_INVOKABLE void close();
    const Artifact& artifact() const { return m_artifact; }
    QString shownArtifactId() const { return m_artifact.id; }
    double shownVersion() const { return static_cast<double>(m_artifact.version.value_or(-1)); }
    QString title() const;
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
    void choose(const ArtifactName& name);
    void look();
    void follow();

    const MessageListModel& m_messages;
    ArtifactName m_name;
    Artifact m_artifact;       // as it was seen last
    std::size_t m_growing = 0; // which of the last message's it is, from 1, while it is the one that is written; else 0
    bool m_isAnswerRunning = false;
    bool m_isGenerating = false;
};

}
