#pragma once

#include "Chat/SocketFrame.h"
#include "ChatFileAttachment.h"
#include "TaskScope.h"

#include <functional>
#include <vector>

namespace Korvi {

class APIClient;
class Random;
class Workers;

// Brings files to the service, so that a message can name their addresses.
class AttachmentUploader {
public:
    static constexpr int jpegQuality = 80; // of 100

    // What became of the attachments of a message. Those that failed are left out.
    struct Uploaded {
        QStringList imageUrls;
        std::vector<SocketFrame::File> fileUrls;
        std::vector<ChatFileAttachment> attachments; // in their order, with `remoteURL` or `uploadError`
    };
    using Progress = std::function<void(const ChatFileAttachment&)>;

    AttachmentUploader(APIClient& client, Workers& workers, Random& random)
        : m_client(client)
        , m_workers(workers)
        , m_random(random) {}

    // One after the other, in their order. `onProgress` hears of each change of one of them.
    Task<Uploaded> uploadAttachments(std::vector<ChatFileAttachment> attachments, Progress onProgress);
    // Gives the address at the service, or fails with APIError, URLError or std::runtime_error. An image goes up as JPEG.
    Task<QString> uploadFile(
        QUrl from, QString filename, std::optional<QString> mimeType, std::function<void(double part)> onProgress);

private:
    APIClient& m_client;
    Workers& m_workers;
    Random& m_random;
};

// The image in that file as JPEG; absent when it is none that can be read. Slow: not for the main thread.
std::optional<QByteArray> jpegOf(const QString& path, int quality);

}
