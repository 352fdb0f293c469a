#pragma once

#include "Artifact.h"

namespace Korvi {

// What has come so far of an artifact that is being written. Identifier, title and text come in pieces. The text is
// not kept here: what has been applied is in the artifact, so that a piece costs its own length only.
class ArtifactDraft {
public:
    void clear() { *this = {}; }
    void take(const QJsonObject& args);
    // The whole, at the end; what it does not tell stays.
    void settle(const QJsonObject& content);

    // Brings the artifact up to date. Whether that changed it.
    bool applyTo(Artifact& artifact);

    static Artifact placeholder(const QString& uuid);
    static bool isPlaceholder(const Artifact& artifact);
    static bool isTemporary(const QString& id);
    // Empty when none has been told.
    static QString titleOf(const Artifact& artifact);

private:
    QString m_id;
    std::optional<QString> m_title;
    std::optional<QString> m_kind;
    std::optional<qint64> m_version;
    QString m_newText;          // not applied yet
    bool m_replacesText = true; // what is applied next is the text from its beginning
    bool m_hasNewText = false;
};

}
