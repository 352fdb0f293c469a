#include "Chat/QuestionUploads.h"

#include "Chat/ComposerAttachments.h"

namespace Korvi {

QuestionUploads::QuestionUploads(ComposerAttachments& attachments, Scheduler& scheduler, Done done)
    : m_attachments(attachments)
    , m_scheduler(scheduler)
    , m_done(std::move(done)) {}

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
    m_done(serial, uploaded);
    // Not gone before its own task is.
    if (const auto ended = m_jobs.find(serial); ended != m_jobs.end()) {
        m_ended.push_back(std::move(ended->second));
        m_jobs.erase(ended);
    }
    m_sweep = m_scheduler.after(std::chrono::milliseconds(0), [this] { m_ended.clear(); });
}

void QuestionUploads::giveBack(quint64 serial) {
    const auto job = m_jobs.find(serial);
    if (job == m_jobs.end())
        return;
    std::vector<ChatFileAttachment> files = job->second->files;
    m_ended.push_back(std::move(job->second));
    m_jobs.erase(job);
    if (m_ended.back()->scope.isWaiting())
        m_ended.back()->scope.cancel();
    m_attachments.giveBack(std::move(files));
    m_sweep = m_scheduler.after(std::chrono::milliseconds(0), [this] { m_ended.clear(); });
}

void QuestionUploads::clear() {
    m_jobs.clear();
    m_ended.clear();
}

}
