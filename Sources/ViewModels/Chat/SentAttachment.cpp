#include "Chat/SentAttachment.h"

#include "SupportedFileTypes.h"

#include <algorithm>

namespace Korvi {

namespace {

const ChatFileAttachment* findIn(const AttachmentListModel& list, const QUrl& localURL) {
    const auto& all = list.attachments();
    const auto found = std::ranges::find(all, std::optional(localURL), &ChatFileAttachment::localURL);
    return found == all.end() ? nullptr : &*found;
}

}

void SentAttachment::setAttachments(ComposerAttachments* attachments) {
    if (attachments == m_attachments)
        return;
    if (m_attachments) {
        disconnect(m_attachments->uploading(), nullptr, this, nullptr);
        disconnect(m_attachments->failed(), nullptr, this, nullptr);
    }
    m_attachments = attachments;
    if (attachments) {
        for (AttachmentListModel* list : {attachments->uploading(), attachments->failed()}) {
            connect(list, &AttachmentListModel::countChanged, this, &SentAttachment::refresh);
            connect(list, &AttachmentListModel::dataChanged, this, &SentAttachment::refresh);
        }
    }
    emit inputChanged();
    refresh();
}

void SentAttachment::setAddress(const QString& address) {
    if (address == m_address)
        return;
    m_address = address;
    emit inputChanged();
    refresh();
}

void SentAttachment::refresh() {
    Now now = find();
    if (now == m_now)
        return;
    m_now = std::move(now);
    emit stateChanged();
}

SentAttachment::Now SentAttachment::find() const {
    const QUrl url(m_address);
    if (!m_attachments)
        return {.state = url.isLocalFile() ? Missing : Sent};
    if (!url.isLocalFile())
        return {.state = Sent, .sizeText = m_attachments->sizeOf(m_address)};
    const bool isOurs = m_attachments->isOurs(url);
    if (const ChatFileAttachment* each = findIn(*m_attachments->uploading(), url))
        return {.state = Uploading,
            .progress = each->uploadProgress,
            .sizeText = SupportedFileTypes::byteCount(each->fileSize),
            .isOurs = isOurs};
    if (const ChatFileAttachment* each = findIn(*m_attachments->failed(), url))
        return {.state = Failed,
            .error = each->uploadError.value_or(QString()),
            .sizeText = SupportedFileTypes::byteCount(each->fileSize),
            .isOurs = isOurs};
    return {.state = Missing, .isOurs = isOurs};
}

}
