#include "Chat/AttachmentUploader.h"

#include "Backend/APIClient.h"
#include "Backend/MultipartBody.h"
#include "Clock.h"
#include "SupportedFileTypes.h"
#include "Workers.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QPainter>

namespace Korvi {

using namespace Qt::Literals;

Q_LOGGING_CATEGORY(lcUploads, "korvi.chat.uploads", QtInfoMsg)

namespace {

const auto unreadable = u"Файл не удалось прочитать."_s;

// What the service answers.
struct UploadResponse {
    QString url;

    static UploadResponse fromJson(const JsonReader& json) { return {.url = json.string("url"_L1)}; }
};

QString describe(const std::exception& error) {
    if (const auto* api = dynamic_cast<const APIError*>(&error))
        return api->errorDescription();
    if (const auto* url = dynamic_cast<const URLError*>(&error))
        return url->description;
    return QString::fromUtf8(error.what());
}

bool isImageName(const QString& filename) {
    return SupportedFileTypes::getCategory(filename, std::nullopt) == FileTypeCategory::image;
}

}

std::optional<QByteArray> jpegOf(const QString& path, int quality) {
    QImageReader reader(path);
    reader.setAutoTransform(true);
    QImage image = reader.read();
    if (image.isNull())
        return std::nullopt;
    if (image.hasAlphaChannel()) { // which JPEG has not
        QImage opaque(image.size(), QImage::Format_RGB32);
        if (opaque.isNull())
            return std::nullopt;
        opaque.fill(Qt::white);
        QPainter(&opaque).drawImage(0, 0, image);
        image = std::move(opaque);
    }
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    return image.save(&buffer, "JPEG", quality) ? std::optional(bytes) : std::nullopt;
}

Task<QString> AttachmentUploader::uploadFile(
    QUrl from, QString filename, std::optional<QString> mimeType, std::function<void(double part)> onProgress) {
    const QString path = from.toLocalFile();
    QString type = mimeType.value_or(u"application/octet-stream"_s);
    std::unique_ptr<QIODevice> content;
    if (isImageName(filename)) {
        const auto jpeg = co_await m_workers.compute([path] { return jpegOf(path, jpegQuality); });
        if (jpeg) {
            auto buffer = std::make_unique<QBuffer>();
            buffer->setData(*jpeg);
            content = std::move(buffer);
            filename = u"image.jpg"_s;
            type = u"image/jpeg"_s;
        }
    }
    if (!content)
        content = std::make_unique<QFile>(path);
    if (!content->open(QIODevice::ReadOnly))
        throw std::runtime_error(unreadable.toStdString());

    const QByteArray boundary = m_random.uuid().toString(QUuid::WithoutBraces).toLatin1();
    auto form = std::make_shared<MultipartBody>(std::move(content), filename, type, boundary);
    const QByteArray contentType = "multipart/form-data; boundary=" + boundary;
    const QByteArray answer =
        co_await m_client.upload(std::move(form), contentType, [onProgress](qint64 sent, qint64 total) {
            if (total > 0)
                onProgress(static_cast<double>(sent) / static_cast<double>(total));
        });
    UploadResponse response;
    try {
        response = decodeJson<UploadResponse>(answer);
    } catch (const DecodingError& error) {
        throw APIError::decodingError(error);
    }
    co_return std::move(response.url);
}

Task<AttachmentUploader::Uploaded> AttachmentUploader::uploadAttachments(
    std::vector<ChatFileAttachment> attachments, Progress onProgress) {
    Uploaded uploaded;
    for (ChatFileAttachment& attachment : attachments) {
        if (!attachment.localURL)
            continue;
        attachment.isUploading = true;
        attachment.uploadError.reset();
        onProgress(attachment);
        const QUrl from = *attachment.localURL;
        const QString filename = attachment.filename;
        const auto mimeType = attachment.mimeType;
        try {
            const QString url = co_await uploadFile(from, filename, mimeType, [&attachment, onProgress](double part) {
                attachment.uploadProgress = part;
                onProgress(attachment);
            });
            attachment.remoteURL = url;
            attachment.uploadProgress = 1;
            if (attachment.category == FileTypeCategory::image)
                uploaded.imageUrls.append(url);
            else
                uploaded.fileUrls.push_back(
                    {.url = url, .filename = filename, .mimetype = mimeType.value_or(u"application/octet-stream"_s)});
        } catch (const TaskCancelled&) {
            throw;
        } catch (const std::exception& error) {
            // Names of files may be personal: only their kind is logged.
            attachment.uploadError = describe(error);
            qCWarning(lcUploads).noquote() << "❌ [ChatViewModel] Failed to upload a file of type"
                                           << mimeType.value_or(u"?"_s) << *attachment.uploadError;
        }
        attachment.isUploading = false;
        onProgress(attachment);
    }
    uploaded.attachments = std::move(attachments);
    co_return std::move(uploaded);
}

}
