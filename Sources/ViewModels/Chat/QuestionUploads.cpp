#include "Chat/QuestionUploads.h"

#include "Chat/AnswerStream.h"
#include "Chat/ComposerAttachments.h"

namespace Korvi {

QuestionUploads::QuestionUploads(ComposerAttachments& attachments, AnswerStream& stream, Scheduler& scheduler)
    : m_attachments(attachments)
    , m_stream(stream)
    , m_scheduler(scheduler) {}

QuestionUploads::~QuestionUploads() = default;

void QuestionUploads::start(quint64 serial, std::vector<ChatFileAttachment> files) {
    auto job = std::make_unique<Job>();
    job->files = std::move(files);
    TaskScope& scope = job->scope;
    m_jobs[serial] = std::move(job);
    scope.start([this, serial] { return run(serial); });
}

Task<void> QuestionUploads::run(quint64 serial) {
    std::vector<ChatFileAttachment> files = m_jobs.at(serial)->files;
    const Uploaded uploaded = co_await m_attachments.upload(std::move(files));
    const auto job = m_jobs.find(serial);
    job->second->files = uploaded.attachments;
    supply(serial, uploaded);
    // Not gone before its own task is.
    if (const auto ended = m_jobs.find(serial); ended != m_jobs.end()) {
        m_ended.push_back(std::move(ended->second));
        m_jobs.erase(ended);
    }
    m_sweep = m_scheduler.after(std::chrono::milliseconds(0), [this] { m_ended.clear(); });
}

void QuestionUploads::supply(quint64 serial, const Uploaded& uploaded) {
    QHash<QString, QString> places;
    for (const ChatFileAttachment& attachment : uploaded.attachments) {
        if (attachment.localURL && attachment.remoteURL)
            places.insert(attachment.localURL->toString(), *attachment.remoteURL);
    }
    const bool isBare = uploaded.imageUrls.isEmpty() && uploaded.fileUrls.empty();
    if (isBare && !m_stream.hasText(serial))
        return m_stream.withdraw(serial);
    // The message shows its first image only: one would never learn that another one is missing.
    bool isFirst = !m_stream.hasImage(serial);
    for (const ChatFileAttachment& attachment : uploaded.attachments) {
        if (attachment.category != FileTypeCategory::image)
            continue;
        if (!isFirst && attachment.uploadError)
            m_attachments.giveBack({attachment});
        isFirst = false;
    }
    m_stream.supply(serial, uploaded.imageUrls, uploaded.fileUrls, places);
}

bool QuestionUploads::giveBack(quint64 serial) {
    const auto job = m_jobs.find(serial);
    if (job == m_jobs.end())
        return false;
    std::vector<ChatFileAttachment> files = job->second->files;
    m_ended.push_back(std::move(job->second));
    m_jobs.erase(job);
    if (m_ended.back()->scope.isWaiting())
        m_ended.back()->scope.cancel();
    m_attachments.giveBack(std::move(files));
    m_sweep = m_scheduler.after(std::chrono::milliseconds(0), [this] { m_ended.clear(); });
    return true;
}

void QuestionUploads::clear() {
    m_jobs.clear();
    m_ended.clear();
}

}
