import QtQuick

// The place of what a tool makes, as a part of an answer.
CardPart {
    id: part

    required property string what

    implicitHeight: skeleton.implicitHeight

    GeneratingSkeleton {
        id: skeleton

        focus: true
        kind: part.what
        width: part.width
    }
}
