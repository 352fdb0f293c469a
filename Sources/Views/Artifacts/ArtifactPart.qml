import QtQuick
import Korvi.Views // the types written in C++

// A document as a part of an answer.
CardPart {
    id: part

    required property var block
    property AnswerContext context: null
    property bool isGenerating: false

    implicitHeight: card.implicitHeight

    ArtifactBlock {
        id: artifact

        block: part.block
    }
    ArtifactCardView {
        id: card

        focus: true
        isGenerating: part.isGenerating
        isSelected: artifact.artifactId.length > 0 && part.context?.artifacts?.shownArtifactId === artifact.artifactId
            && part.context.artifacts.shownVersion === artifact.version
        kindName: artifact.kind
        title: artifact.title
        version: artifact.version
        width: part.width

        onChosen: part.context?.artifacts?.select(artifact.artifactId, artifact.version)
    }
}
