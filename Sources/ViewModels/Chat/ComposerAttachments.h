#pragma once

#include "Chat/AttachmentIntake.h"
#include "Chat/AttachmentListModel.h"
#include "Chat/AttachmentUploader.h"

#include <QHash>
#include <QProperty>

namespace Korvi {

class Clipboard;
class Random;

// The files of the composer, and those of messages on their way: what is accepted, what waits, what is being uploaded,
// and what could not be. Main thread only.
class ComposerAttachments : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("owned by the application")
    Q_PROPERTY(Korvi::AttachmentListModel* pending READ pending CONSTANT)
    // Those of sent messages whose upload has failed: they stand in the message by their local address.
    Q_PROPERTY(Korvi::AttachmentListModel* failed READ failed CONSTANT)
    // Those of sent messages that are being uploaded.
    Q_PROPERTY(Korvi::AttachmentListModel* uploading READ uploading CONSTANT)
    Q_PROPERTY(QString fileValidationError READ fileValidationError NOTIFY fileValidationErrorChanged BINDABLE
            bindableFileValidationError) // empty when absent
    Q_PROPERTY(bool isUploadingAttachments READ isUploadingAttachments NOTIFY isUploadingAttachmentsChanged BINDABLE
            bindableIsUploadingAttachments)

public:
    struct Dependencies {
        AttachmentIntake& intake;
        AttachmentUploader& uploader;
        Clipboard& clipboard;
        Random& random;
    };

    explicit ComposerAttachments(Dependencies dependencies, QObject* parent = nullptr);
    ~ComposerAttachments() override;

    AttachmentListModel* pending() { return &m_pending; }
    AttachmentListModel* failed() { return &m_failed; }
    AttachmentListModel* uploading() { return &m_uploading; }
    QString fileValidationError() const { return m_fileValidationError; }
    bool isUploadingAttachments() const { return m_isUploading; }
    QBindable<QString> bindableFileValidationError() { return &m_fileValidationError; }
    QBindable<bool> bindableIsUploadingAttachments() { return &m_isUploading; }

    // Whether video and audio are accepted. They are of one model only.
    void setAIPlusMode(bool isAIPlusMode) { m_isAIPlusMode = isAIPlusMode; }

    void addFileAttachment(
        const QString& filename, qint64 fileSize, const std::optional<QString>& mimeType, const QUrl& localURL);
    Q_INVOKABLE void removeFileAttachment(const QString& id);
    Q_INVOKABLE void clearFileAttachments();

    // Picked, dropped or pasted files. Copied first; each appears when it has been, in their order. What was not accepted
    // of them is told at the end. False when none of them is a file.
    Q_INVOKABLE bool addFiles(const QList<QUrl>& files);
    // A dropped image that is no file; `type` is its MIME type.
    Q_INVOKABLE void addImageData(const QByteArray& data, const QString& type);
    // What was dropped: files of this machine, or else an image that is no file (`type` is its MIME type), or else an
    // address of the web, of which nothing is fetched. False when nothing of it is of use.
    Q_INVOKABLE bool addDropped(const QList<QUrl>& urls, const QByteArray& image, const QString& type);
    // Takes the files or the image of the clipboard. False when the text field is to paste.
    Q_INVOKABLE bool paste();
    Q_INVOKABLE void dismissValidationError() { m_fileValidationError = QString(); }
    // For a file dialog, of what is accepted now.
    Q_INVOKABLE QStringList nameFilters() const;
    // Takes the image of the clipboard, if there is one and no text beside it. False when the text field is to paste.
    Q_INVOKABLE bool pasteImage();

    // Whether the image was pasted here. No other local file may be uploaded as an image to be edited: the address may
    // have come with an answer.
    bool isPasted(const QUrl& image) const { return m_dependencies.intake.owns(image); }
    // A pasted image that goes with no message. One that waits elsewhere, or is on its way, stays.
    void discardPasted(const QUrl& image);
    // The attachments that go with the message that is sent now.
    std::vector<ChatFileAttachment> takePending();
    // What was taken for a message that does not go: it waits again.
    void giveBack(std::vector<ChatFileAttachment> attachments);
    // An image that stands in a message by its local address, to be uploaded like an attachment.
    static ChatFileAttachment attachmentOf(const QUrl& image, QUuid id);

    // Uploads them for a message. Failed ones can be sent again later, the copies of others are gone afterwards.
    Task<AttachmentUploader::Uploaded> upload(std::vector<ChatFileAttachment> attachments);
    // The failed attachment of that local address, which is then to be sent again; absent when there is none.
    std::optional<ChatFileAttachment> takeFailed(const QUrl& localURL);
    // Whether the local address is that of an attachment of the user's own. Others may have come from anywhere and are
    // not looked at.
    bool isOurs(const QUrl& localURL) const;
    // "1,5 МБ" of what was uploaded since the start; otherwise empty.
    QString sizeOf(const QString& remoteURL) const { return m_sizes.value(remoteURL); }
    // The failed attachment of that local address waits in the composer again. False when there is none.
    Q_INVOKABLE bool retry(const QUrl& localURL);
    // "", or why the attachment of that local address is missing in its message.
    Q_INVOKABLE QString failureOf(const QUrl& localURL) const;

    void reset(); // another user, or none

signals:
    void fileValidationErrorChanged();
    void isUploadingAttachmentsChanged();
    void imagePasted(const QUrl& image); // a file of our own

private:
    bool isListed(const QUrl& localURL) const; // it waits, is on its way, or has failed
    Task<void> addAll(QList<QUrl> files);
    Task<void> addImage(QByteArray data, QString type);
    Task<void> keepPasted(QImage image);
    void take(const AttachmentIntake::Taken& taken);
    void discard(const ChatFileAttachment& attachment);

    Dependencies m_dependencies;
    AttachmentListModel m_pending;
    AttachmentListModel m_failed;
    AttachmentListModel m_uploading;
    bool m_isAIPlusMode = false;
    int m_uploads = 0;
    QHash<QString, QString> m_sizes; // by address at the service
    Q_OBJECT_BINDABLE_PROPERTY(
        ComposerAttachments, QString, m_fileValidationError, &ComposerAttachments::fileValidationErrorChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(
        ComposerAttachments, bool, m_isUploading, false, &ComposerAttachments::isUploadingAttachmentsChanged)
    TaskScope m_scope; // last: its tasks end before anything they use
};

}
