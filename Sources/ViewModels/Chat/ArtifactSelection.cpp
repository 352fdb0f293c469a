#include "Chat/ArtifactSelection.h"

#include "Chat/ArtifactDraft.h"
#include "Chat/MessageListModel.h"

#include <algorithm>

namespace Korvi {

ArtifactSelection::ArtifactSelection(const MessageListModel& messages, QObject* parent)
    : QObject(parent)
    , m_messages(messages) {
    connect(&m_messages, &QAbstractItemModel::dataChanged, this, &ArtifactSelection::look);
    connect(&m_messages, &QAbstractItemModel::rowsInserted, this, &ArtifactSelection::look);
    connect(&m_messages, &QAbstractItemModel::rowsRemoved, this, &ArtifactSelection::look);
    // Another conversation holds other artifacts.
    connect(&m_messages, &QAbstractItemModel::modelReset, this, &ArtifactSelection::close);
}

void ArtifactSelection::select(const QString& id, qint64 version) {
    choose({.id = id, .version = version < 0 ? std::nullopt : std::optional(version)});
}

void ArtifactSelection::close() {
    choose({});
}

void ArtifactSelection::choose(const ArtifactName& name) {
    if (m_name == name)
        return;
    m_name = name;
    m_artifact = {};
    m_growing = 0;
    m_isGenerating = false;
    emit selectedArtifactIdChanged();
    look();
    emit changed();
}

QString ArtifactSelection::title() const {
    return ArtifactDraft::titleOf(m_artifact);
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
    if (!isOpen())
        return;
    follow();
    const Artifact* found = ArtifactFinder::find(m_messages.messages(), m_name);
    const auto ofLast = ArtifactFinder::ofLast(m_messages.messages());
    const bool isInLast = found && std::any_of(ofLast.begin(), ofLast.end(), [&](const Artifact* each) {
        return ArtifactFinder::nameOf(*each) == ArtifactFinder::nameOf(*found);
    });
    const bool isGenerating = isInLast && m_isAnswerRunning;
    m_growing = isGenerating && ofLast.back() == found ? ofLast.size() : 0;
    if ((!found || *found == m_artifact) && isGenerating == m_isGenerating)
        return;
    if (found)
        m_artifact = *found;
    m_isGenerating = isGenerating;
    emit changed();
}

// While it is written, it gets its identifier and its version: from then on it is known by them.
void ArtifactSelection::follow() {
    const auto ofLast = ArtifactFinder::ofLast(m_messages.messages());
    const Artifact* named = m_growing > 0 && m_growing == ofLast.size() ? ofLast.back() : nullptr;
    if (!named && ArtifactDraft::isTemporary(m_name.id))
        named = ArtifactFinder::find(m_messages.messages(), m_name);
    if (!named || ArtifactFinder::nameOf(*named) == m_name || ArtifactDraft::isTemporary(named->id))
        return;
    m_name = ArtifactFinder::nameOf(*named);
    emit selectedArtifactIdChanged();
}

}
