#pragma once

#include "ChatFileAttachment.h"

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

#include <vector>

namespace Korvi {

// Files that a message is to carry, in their order.
class AttachmentListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("owned by ComposerAttachments")
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Role {
        AttachmentIdRole = Qt::UserRole + 1, // "attachmentId", string
        FilenameRole,                        // "filename", string
        SizeTextRole,                        // "sizeText", string: "1,5 МБ"
        CategoryRole,                        // "category": "image", "document", "code", "video" or "audio"
        SourceRole,                          // "source", URL of the local file
        IsUploadingRole,                     // "isUploading", bool
        ProgressRole,                        // "progress", from 0 to 1
        ErrorRole,                           // "error", string: why the upload failed; empty otherwise
    };
    Q_ENUM(Role)

    using QAbstractListModel::QAbstractListModel;

    int count() const { return static_cast<int>(m_attachments.size()); }
    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    const std::vector<ChatFileAttachment>& attachments() const { return m_attachments; }
    const ChatFileAttachment* find(const QUuid& id) const; // null when it is not here
    void append(ChatFileAttachment attachment);
    void update(const ChatFileAttachment& attachment); // that with its id, if it is here
    bool remove(const QUuid& id);
    std::vector<ChatFileAttachment> takeAll();

signals:
    void countChanged();

private:
    int rowOf(const QUuid& id) const; // -1 without one

    std::vector<ChatFileAttachment> m_attachments;
};

}
