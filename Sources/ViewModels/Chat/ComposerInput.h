#pragma once

#include "Scheduler.h"

#include <QHash>
#include <QObject>

namespace Korvi {

class Defaults;

// What is being written: the text of the composer, and the image that the next message is to edit. The text is written
// down a moment after it was typed, and so is what was left in a chat when a new one was begun.
class ComposerInput : public QObject {
    Q_OBJECT

public:
    static constexpr auto draftDelay = std::chrono::seconds(1);

    ComposerInput(Defaults& defaults, Scheduler& scheduler);

    const QString& text() const { return m_text; }
    void setText(const QString& text);
    void putInFront(const QString& text); // of what is being written
    const std::optional<QString>& editImageUrl() const { return m_editImageUrl; }
    void setEditImageUrl(std::optional<QString> url);

    void leaveIn(qint64 chatId);    // a new chat is begun: it waits in this one
    void takeUpFrom(qint64 chatId); // what was left there, if nothing is being written
    void save();                    // now, not a moment later
    void restore();                 // what the last run has written down
    void forgetStored();            // it was another user's
    void clear();                   // from the screen
    void reset();                   // the same, and nothing of it is written down any more

signals:
    void textChanged();
    void editImageChanged();

private:
    void saveLeft();

    Defaults& m_defaults;
    Scheduler& m_scheduler;
    QString m_text;
    std::optional<QString> m_editImageUrl;
    QHash<qint64, QString> m_left; // by chat
    Timer m_saveTimer;
};

}
