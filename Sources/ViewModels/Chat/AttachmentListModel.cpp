#include "Chat/AttachmentListModel.h"

#include "SupportedFileTypes.h"

#include <algorithm>

namespace Korvi {

namespace {

QString nameOf(FileTypeCategory category) {
    switch (category) {
    case FileTypeCategory::image: return QStringLiteral("image");
    case FileTypeCategory::document: return QStringLiteral("document");
    case FileTypeCategory::code: return QStringLiteral("code");
    case FileTypeCategory::video: return QStringLiteral("video");
    case FileTypeCategory::audio: return QStringLiteral("audio");
    case FileTypeCategory::unsupported: break;
    }
    return QStringLiteral("unsupported");
}

}

int AttachmentListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant AttachmentListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= count())
        return {};
    const ChatFileAttachment& attachment = m_attachments[static_cast<std::size_t>(index.row())];
    switch (role) {
    case AttachmentIdRole: return attachment.id.toString(QUuid::WithoutBraces);
    case FilenameRole: return attachment.filename;
    case SizeTextRole: return SupportedFileTypes::byteCount(attachment.fileSize);
    case CategoryRole: return nameOf(attachment.category);
    case SourceRole: return attachment.localURL.value_or(QUrl());
    case IsUploadingRole: return attachment.isUploading;
    case ProgressRole: return attachment.uploadProgress;
    case ErrorRole: return attachment.uploadError.value_or(QString());
    default: return {};
    }
}

QHash<int, QByteArray> AttachmentListModel::roleNames() const {
    return {
        {AttachmentIdRole, "attachmentId"},
        {FilenameRole, "filename"},
        {SizeTextRole, "sizeText"},
        {CategoryRole, "category"},
        {SourceRole, "source"},
        {IsUploadingRole, "isUploading"},
        {ProgressRole, "progress"},
        {ErrorRole, "error"},
    };
}

int AttachmentListModel::rowOf(const QUuid& id) const {
    const auto found = std::find_if(
        m_attachments.begin(), m_attachments.end(), [&](const ChatFileAttachment& each) { return each.id == id; });
    return found == m_attachments.end() ? -1 : static_cast<int>(found - m_attachments.begin());
}

const ChatFileAttachment* AttachmentListModel::find(const QUuid& id) const {
    const int row = rowOf(id);
    return row < 0 ? nullptr : &m_attachments[static_cast<std::size_t>(row)];
}

void AttachmentListModel::append(ChatFileAttachment attachment) {
    beginInsertRows({}, count(), count());
    m_attachments.push_back(std::move(attachment));
    endInsertRows();
    emit countChanged();
}

void AttachmentListModel::update(const ChatFileAttachment& attachment) {
    const int row = rowOf(attachment.id);
    if (row < 0 || m_attachments[static_cast<std::size_t>(row)] == attachment)
        return;
    m_attachments[static_cast<std::size_t>(row)] = attachment;
    emit dataChanged(index(row), index(row));
}

bool AttachmentListModel::remove(const QUuid& id) {
    const int row = rowOf(id);
    if (row < 0)
        return false;
    beginRemoveRows({}, row, row);
    m_attachments.erase(m_attachments.begin() + row);
    endRemoveRows();
    emit countChanged();
    return true;
}

std::vector<ChatFileAttachment> AttachmentListModel::takeAll() {
    if (m_attachments.empty())
        return {};
    beginResetModel();
    std::vector<ChatFileAttachment> all = std::exchange(m_attachments, {});
    endResetModel();
    emit countChanged();
    return all;
}

}
