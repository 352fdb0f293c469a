#include "Chat/ArtifactDraft.h"

namespace Korvi {

using namespace Qt::Literals;

namespace {

constexpr auto temporaryPrefix = "temp-"_L1;
constexpr auto loadingKind = "loading"_L1;
constexpr auto loadingTitle = "Loading..."_L1;

template <class T>
bool assign(T& target, const T& value) {
    if (target == value)
        return false;
    target = value;
    return true;
}

std::optional<qint64> integerOf(const QJsonValue& value) {
    constexpr qint64 none = std::numeric_limits<qint64>::min();
    const qint64 integer = value.toInteger(none);
    return integer == none ? std::nullopt : std::optional(integer);
}

}

void ArtifactDraft::take(const QJsonObject& args) {
    for (auto it = args.begin(); it != args.end(); ++it) {
        const auto key = it.key();
        const QJsonValue value = *it;
        if (key == "kind"_L1) {
            m_kind = value.isString() ? std::optional(value.toString()) : std::nullopt;
        } else if (key == "version"_L1) {
            m_version = integerOf(value);
        } else if (value.isString()) {
            if (key == "id"_L1)
                m_id += value.toString();
            else if (key == "title"_L1)
                m_title = m_title.value_or(QString()) + value.toString();
            else if (key == "text"_L1) {
                m_newText += value.toString();
                m_hasNewText = true;
            }
        }
    }
}

void ArtifactDraft::settle(const QJsonObject& content) {
    if (const QString id = content.value("id"_L1).toString(); !id.isEmpty())
        m_id = id;
    if (const QString title = content.value("title"_L1).toString(); !title.isEmpty())
        m_title = title;
    if (const QString kind = content.value("kind"_L1).toString(); !kind.isEmpty())
        m_kind = kind;
    if (const QString text = content.value("text"_L1).toString(); !text.isEmpty()) {
        m_newText = text;
        m_hasNewText = true;
        m_replacesText = true;
    }
    if (content.contains("version"_L1))
        m_version = integerOf(content.value("version"_L1));
}

bool ArtifactDraft::applyTo(Artifact& artifact) {
    bool isChanged = !m_id.isEmpty() && assign(artifact.id, m_id);
    isChanged = (m_title && assign(artifact.title, *m_title)) || isChanged;
    isChanged = (m_kind && assign(artifact.kind, *m_kind)) || isChanged;
    isChanged = (m_version && assign(artifact.version, m_version)) || isChanged;
    if (!m_hasNewText)
        return isChanged;
    if (m_replacesText) {
        isChanged = assign(artifact.text, SharedText(m_newText)) || isChanged;
    } else if (!m_newText.isEmpty()) {
        artifact.text.append(m_newText);
        isChanged = true;
    }
    m_replacesText = false;
    m_hasNewText = false;
    m_newText.clear();
    return isChanged;
}

Artifact ArtifactDraft::placeholder(const QString& uuid) {
    return {.id = temporaryPrefix + uuid,
        .title = QString(loadingTitle),
        .kind = QString(loadingKind),
        .text = {},
        .version = std::nullopt};
}

bool ArtifactDraft::isPlaceholder(const Artifact& artifact) {
    return artifact.kind == loadingKind && isTemporary(artifact.id);
}

bool ArtifactDraft::isTemporary(const QString& id) {
    return id.startsWith(temporaryPrefix);
}

QString ArtifactDraft::titleOf(const Artifact& artifact) {
    return artifact.title == loadingTitle ? QString() : artifact.title;
}

}
