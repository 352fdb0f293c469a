#include "Chat/AttachmentUploader.h"

#include "Backend/APIClient.h"
#include "Backend/ErrorText.h"
#include "Backend/MultipartBody.h"
#include "Clock.h"
#include "SupportedFileTypes.h"
#include "Workers.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QLoggingCategory>
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

QString urlIn(const QByteArray& answer) {
    try {
        return decodeJson<UploadResponse>(answer).url;
    } catch (const DecodingError& error) {
        throw APIError::decodingError(error);
    }
}

// Why it failed, in the service's own words if it said so.
QString reasonOf(const std::exception& error) {
    const auto* api = dynamic_cast<const APIError*>(&error);
    const auto* refusal = api ? api->asServerError() : nullptr;
    const QString body = refusal ? refusal->body.value_or(QString()) : QString();
    const QString said = extractMessage(body);
    return said.isEmpty() || said == body.left(120) ? errorText(error) : said;
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
        const auto encode = [path] { return jpegOf(path, jpegQuality); };
        const auto jpeg = co_await m_workers.compute(encode);
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
    const std::function<void(qint64, qint64)> report = [onProgress](qint64 sent, qint64 total) {
        if (total > 0)
            onProgress(static_cast<double>(sent) / static_cast<double>(total));
    };
    try {
        const QByteArray answer = co_await m_client.upload(form, contentType, report);
        co_return urlIn(answer);
    } catch (const APIError& error) {
        if (const auto* refusal = error.asServerError())
            qCWarning(lcUploads) << "❌ [ChatViewModel] File upload failed with status:" << refusal->status;
        throw;
    }
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
        const std::function<void(double)> report = [&attachment, onProgress](double part) {
            attachment.uploadProgress = part;
            onProgress(attachment);
        };
        try {
            const QString url = co_await uploadFile(from, filename, mimeType, report);
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
            attachment.uploadError = reasonOf(error);
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
