#include "Chat/ComposerInput.h"

#include "Defaults.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace Korvi {

using namespace Qt::Literals;

namespace {

const auto draftKey = u"composerDraft"_s;
const auto leftKey = u"leftComposerInputs"_s;

}

ComposerInput::ComposerInput(Defaults& defaults, Scheduler& scheduler)
    : m_defaults(defaults)
    , m_scheduler(scheduler) {}

void ComposerInput::setText(const QString& text) {
    if (m_text == text)
        return;
    m_text = text;
    m_saveTimer = m_scheduler.after(draftDelay, [this] { save(); });
    emit textChanged();
}

void ComposerInput::putInFront(const QString& text) {
    setText(m_text.isEmpty() ? text : text + u"\n\n"_s + m_text);
    save();
}

void ComposerInput::setEditImageUrl(std::optional<QString> url) {
    if (m_editImageUrl == url)
        return;
    m_editImageUrl = std::move(url);
    emit editImageChanged();
}

void ComposerInput::leaveIn(qint64 chatId) {
    if (m_text.isEmpty())
        return;
    m_left.insert(chatId, m_text);
    saveLeft();
}

void ComposerInput::takeUpFrom(qint64 chatId) {
    if (!m_text.isEmpty() || !m_left.contains(chatId))
        return;
    setText(m_left.take(chatId));
    save();
    saveLeft();
}

void ComposerInput::save() {
    m_saveTimer.cancel();
    if (m_text.isEmpty())
        m_defaults.remove(draftKey);
    else
        m_defaults.setString(draftKey, m_text);
}

void ComposerInput::saveLeft() {
    QJsonObject left;
    for (auto it = m_left.begin(); it != m_left.end(); ++it)
        left.insert(QString::number(it.key()), it.value());
    m_defaults.setData(leftKey, QJsonDocument(left).toJson(QJsonDocument::Compact));
}

void ComposerInput::restore() {
    if (m_text.isEmpty())
        setText(m_defaults.string(draftKey).value_or(QString()));
    const QJsonObject left = QJsonDocument::fromJson(m_defaults.data(leftKey).value_or(QByteArray())).object();
    for (auto it = left.begin(); it != left.end(); ++it)
        m_left.insert(it.key().toLongLong(), it.value().toString());
}

void ComposerInput::forgetStored() {
    m_defaults.remove(draftKey);
    m_defaults.remove(leftKey);
}

void ComposerInput::clear() {
    setText({});
    m_left.clear();
}

void ComposerInput::reset() {
    m_left.clear();
    m_text.clear();
    m_saveTimer.cancel();
    emit textChanged();
    setEditImageUrl(std::nullopt);
}

}
