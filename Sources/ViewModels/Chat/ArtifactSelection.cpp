#include "Chat/ArtifactSelection.h"

#include "Chat/ArtifactFinder.h"
#include "Chat/MessageListModel.h"

namespace Korvi {

ArtifactSelection::ArtifactSelection(const MessageListModel& messages, QObject* parent)
    : QObject(parent)
    , m_messages(messages) {
    connect(&m_messages, &QAbstractItemModel::dataChanged, this, &ArtifactSelection::look);
    connect(&m_messages, &QAbstractItemModel::rowsInserted, this, &ArtifactSelection::look);
    connect(&m_messages, &QAbstractItemModel::rowsRemoved, this, &ArtifactSelection::look);
    // Another conversation holds other artifacts.
    connect(&m_messages, &QAbstractItemModel::modelReset, this, [this] { select({}); });
}

void ArtifactSelection::select(const QString& id) {
    if (m_id == id)
        return;
    m_id = id;
    m_artifact = {};
    emit selectedArtifactIdChanged();
    look();
    emit changed();
}

QString ArtifactSelection::kindLabel() const {
    return labelOf(m_artifact.kind);
}

QString ArtifactSelection::labelOf(const QString& kind) {
    return ArtifactFinder::labelOf(kind);
}

void ArtifactSelection::setAnswerRunning(bool isRunning) {
    m_isAnswerRunning = isRunning;
    look();
}

void ArtifactSelection::look() {
    if (m_id.isEmpty())
        return;
    const Artifact* found = ArtifactFinder::find(m_messages.messages(), m_id);
    const bool isGenerating = found && m_isAnswerRunning && ArtifactFinder::isInLast(m_messages.messages(), found->id);
    if ((!found || *found == m_artifact) && isGenerating == m_isGenerating)
        return;
    if (found)
        m_artifact = *found;
    m_isGenerating = isGenerating;
    emit changed();
}

}
