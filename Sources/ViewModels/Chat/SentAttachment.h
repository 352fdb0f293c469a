#pragma once

#include "Chat/ComposerAttachments.h"

#include <QPointer>

namespace Korvi {

// What has become of one attachment of a message of the user, as told by its address in the message.
class SentAttachment : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(Korvi::ComposerAttachments* attachments READ attachments WRITE setAttachments NOTIFY inputChanged)
    Q_PROPERTY(QString address READ address WRITE setAddress NOTIFY inputChanged)
    Q_PROPERTY(State state READ state NOTIFY stateChanged)
    Q_PROPERTY(double progress READ progress NOTIFY stateChanged)  // of the upload, from 0 to 1
    Q_PROPERTY(QString error READ error NOTIFY stateChanged)       // why it has failed; otherwise empty
    Q_PROPERTY(QString sizeText READ sizeText NOTIFY stateChanged) // "1,5 МБ"; empty when it is not known
    Q_PROPERTY(bool isOurs READ isOurs NOTIFY stateChanged)        // a local file that may be looked at

public:
    enum State {
        Sent,
        Uploading,
        Failed,  // it can be sent again
        Missing, // it has not gone with the message
    };
    Q_ENUM(State)

    using QObject::QObject;

    ComposerAttachments* attachments() const { return m_attachments; }
    void setAttachments(ComposerAttachments* attachments);
    QString address() const { return m_address; }
    void setAddress(const QString& address);

    State state() const { return m_now.state; }
    double progress() const { return m_now.progress; }
    QString error() const { return m_now.error; }
    QString sizeText() const { return m_now.sizeText; }
    bool isOurs() const { return m_now.isOurs; }

signals:
    void inputChanged();
    void stateChanged();

private:
    struct Now {
        State state = Sent;
        double progress = 0;
        QString error = {};
        QString sizeText = {};
        bool isOurs = false;

        bool operator==(const Now&) const = default;
    };

    void refresh();
    Now find() const;

    QPointer<ComposerAttachments> m_attachments;
    QString m_address;
    Now m_now;
};

}
