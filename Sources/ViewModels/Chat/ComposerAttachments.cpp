#include "Chat/ComposerAttachments.h"

#include "Clipboard.h"
#include "Clock.h"
#include "SupportedFileTypes.h"

#include <QFileInfo>
#include <QLoggingCategory>

#include <algorithm>

namespace Korvi {

using namespace Qt::Literals;

Q_LOGGING_CATEGORY(lcComposer, "korvi.chat.composer", QtInfoMsg)

namespace {

const auto notReadable = u"Файл не удалось прочитать"_s;
const auto onlyAddress = u"Это только ссылка. Скопируйте само изображение и вставьте его (Ctrl+V)"_s;
const auto notKept = u"Изображение не удалось сохранить"_s;

// Counts what is under way, through every way out.
class Counting {
public:
    Counting(int& count, std::function<void()> changed)
        : m_count(count)
        , m_changed(std::move(changed)) {
        ++m_count;
        m_changed();
    }
    ~Counting() {
        --m_count;
        m_changed();
    }
    Counting(const Counting&) = delete;
    Counting& operator=(const Counting&) = delete;

private:
    int& m_count;
    std::function<void()> m_changed;
};

}

ComposerAttachments::ComposerAttachments(Dependencies dependencies, QObject* parent)
    : QObject(parent)
    , m_dependencies(dependencies) {}

ComposerAttachments::~ComposerAttachments() = default;

// What is accepted

void ComposerAttachments::addFileAttachment(
    const QString& filename, qint64 fileSize, const std::optional<QString>& mimeType, const QUrl& localURL) {
    const FileValidationResult result = SupportedFileTypes::validateFile(filename, fileSize, mimeType, m_isAIPlusMode);
    const auto* valid = std::get_if<FileValidationResult::Valid>(&result.value);
    if (!valid) {
        m_fileValidationError = result.errorMessage();
        qCInfo(lcComposer) << "❌ [ChatViewModel] File validation failed:" << result.value.index();
        m_dependencies.intake.discard(localURL);
        return;
    }
    ChatFileAttachment attachment;
    attachment.id = m_dependencies.random.uuid();
    attachment.filename = filename;
    attachment.fileSize = fileSize;
    attachment.mimeType = mimeType;
    attachment.category = valid->category;
    attachment.localURL = localURL;
    m_pending.append(std::move(attachment));
    m_fileValidationError = QString();
    qCInfo(lcComposer) << "📎 [ChatViewModel] Added file attachment of" << fileSize << "bytes";
}

void ComposerAttachments::removeFileAttachment(const QString& id) {
    const ChatFileAttachment* attachment = m_pending.find(QUuid(id));
    if (!attachment)
        return;
    discard(*attachment);
    m_pending.remove(QUuid(id));
    if (m_pending.count() == 0)
        m_fileValidationError = QString();
}

void ComposerAttachments::clearFileAttachments() {
    for (const ChatFileAttachment& attachment : m_pending.takeAll())
        discard(attachment);
    m_fileValidationError = QString();
}

void ComposerAttachments::discard(const ChatFileAttachment& attachment) {
    if (attachment.localURL)
        m_dependencies.intake.discard(*attachment.localURL);
}

// Where it comes from

bool ComposerAttachments::addFiles(const QList<QUrl>& files) {
    QList<QUrl> local;
    std::ranges::copy_if(files, std::back_inserter(local), &QUrl::isLocalFile);
    if (local.isEmpty())
        return false;
    m_scope.start([this, local] { return addAll(local); });
    return true;
}

Task<void> ComposerAttachments::addAll(QList<QUrl> files) {
    QString firstError;
    for (const QUrl& file : files) {
        const auto taken = co_await m_dependencies.intake.takeFile(file);
        m_fileValidationError = QString();
        if (taken)
            take(*taken);
        else
            m_fileValidationError = notReadable;
        if (firstError.isEmpty())
            firstError = m_fileValidationError;
    }
    m_fileValidationError = firstError; // the ones after it may have been fine
}

bool ComposerAttachments::addDropped(const QList<QUrl>& urls, const QByteArray& image, const QString& type) {
    qCInfo(lcComposer) << "[Drop] Provider types:" << urls.size() << "addresses" << type;
    if (addFiles(urls))
        return true;
    if (!image.isEmpty()) {
        addImageData(image, type);
        return true;
    }
    if (urls.isEmpty())
        return false;
    m_fileValidationError = onlyAddress;
    return true;
}

void ComposerAttachments::addImageData(const QByteArray& data, const QString& type) {
    if (!data.isEmpty())
        m_scope.start([this, data, type] { return addImage(data, type); });
}

Task<void> ComposerAttachments::addImage(QByteArray data, QString type) {
    const auto taken = co_await m_dependencies.intake.takeImageData(data, type);
    if (taken)
        take(*taken);
    else
        m_fileValidationError = notKept;
}

void ComposerAttachments::take(const AttachmentIntake::Taken& taken) {
    addFileAttachment(taken.filename, taken.size, taken.mimeType, taken.localURL);
}

bool ComposerAttachments::paste() {
    // A file manager gives the paths as text as well.
    return addFiles(m_dependencies.clipboard.files()) || pasteImage();
}

QStringList ComposerAttachments::nameFilters() const {
    return SupportedFileTypes::nameFilters(m_isAIPlusMode);
}

bool ComposerAttachments::pasteImage() {
    if (m_dependencies.clipboard.hasText())
        return false;
    const QImage image = m_dependencies.clipboard.image();
    if (image.isNull())
        return false;
    m_scope.start([this, image] { return keepPasted(image); });
    return true;
}

Task<void> ComposerAttachments::keepPasted(QImage image) {
    const auto file = co_await m_dependencies.intake.takeImage(image);
    if (file)
        emit imagePasted(*file);
    else
        m_fileValidationError = notKept;
}

void ComposerAttachments::discardPasted(const QUrl& image) {
    if (!isListed(image))
        m_dependencies.intake.discard(image);
}

// The way to the service

std::vector<ChatFileAttachment> ComposerAttachments::takePending() {
    m_fileValidationError = QString();
    return m_pending.takeAll();
}

void ComposerAttachments::giveBack(std::vector<ChatFileAttachment> attachments) {
    for (ChatFileAttachment& attachment : attachments) {
        attachment.isUploading = false;
        attachment.uploadProgress = 0;
        m_uploading.remove(attachment.id);
        m_failed.remove(attachment.id);
        m_pending.append(std::move(attachment));
    }
}

ChatFileAttachment ComposerAttachments::attachmentOf(const QUrl& image, QUuid id) {
    ChatFileAttachment attachment;
    const QFileInfo file(image.toLocalFile());
    attachment.id = id;
    attachment.filename = file.fileName();
    attachment.fileSize = file.size();
    attachment.mimeType = SupportedFileTypes::preferredMIMEType(file.suffix());
    attachment.category = FileTypeCategory::image;
    attachment.localURL = image;
    return attachment;
}

Task<AttachmentUploader::Uploaded> ComposerAttachments::upload(std::vector<ChatFileAttachment> attachments) {
    const Counting counting(m_uploads, [this] { m_isUploading = m_uploads > 0; });
    for (const ChatFileAttachment& attachment : attachments)
        m_uploading.append(attachment);
    const AttachmentUploader::Progress report = [this](const ChatFileAttachment& each) { m_uploading.update(each); };
    AttachmentUploader::Uploaded uploaded = co_await m_dependencies.uploader.uploadAttachments(attachments, report);
    for (const ChatFileAttachment& attachment : uploaded.attachments) {
        m_uploading.remove(attachment.id);
        if (attachment.uploadError) {
            m_failed.append(attachment);
        } else {
            m_sizes.insert(
                attachment.remoteURL.value_or(QString()), SupportedFileTypes::byteCount(attachment.fileSize));
            discard(attachment);
        }
    }
    co_return std::move(uploaded);
}

std::optional<ChatFileAttachment> ComposerAttachments::takeFailed(const QUrl& localURL) {
    const auto& failed = m_failed.attachments();
    const auto found = std::ranges::find(failed, std::optional(localURL), &ChatFileAttachment::localURL);
    if (found == failed.end())
        return std::nullopt;
    ChatFileAttachment again = *found;
    m_failed.remove(again.id);
    again.uploadError.reset();
    again.isUploading = false;
    again.uploadProgress = 0;
    return again;
}

bool ComposerAttachments::isListed(const QUrl& localURL) const {
    const auto isIn = [&](const AttachmentListModel& list) {
        return std::ranges::any_of(
            list.attachments(), [&](const ChatFileAttachment& each) { return each.localURL == localURL; });
    };
    return isIn(m_uploading) || isIn(m_failed) || isIn(m_pending);
}

bool ComposerAttachments::isOurs(const QUrl& localURL) const {
    return m_dependencies.intake.owns(localURL) || isListed(localURL);
}

bool ComposerAttachments::retry(const QUrl& localURL) {
    auto again = takeFailed(localURL);
    if (!again)
        return false;
    giveBack({*std::move(again)});
    return true;
}

QString ComposerAttachments::failureOf(const QUrl& localURL) const {
    const auto& failed = m_failed.attachments();
    const auto found = std::find_if(
        failed.begin(), failed.end(), [&](const ChatFileAttachment& each) { return each.localURL == localURL; });
    return found == failed.end() ? QString() : found->uploadError.value_or(QString());
}

void ComposerAttachments::reset() {
    m_scope.cancel();
    clearFileAttachments();
    for (const ChatFileAttachment& attachment : m_failed.takeAll())
        discard(attachment);
    m_uploading.takeAll();
    m_sizes.clear();
}

}
