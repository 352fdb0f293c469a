#pragma once

#include "Chat/AttachmentUploader.h"
#include "Scheduler.h"

#include <map>
#include <memory>

namespace Korvi {

class ComposerAttachments;

// The files of questions that are held until these are at the service. Main thread only.
class QuestionUploads {
public:
    using Uploaded = AttachmentUploader::Uploaded;
    using Done = std::function<void(quint64 serial, const Uploaded& uploaded)>;

    QuestionUploads(ComposerAttachments& attachments, Scheduler& scheduler, Done done);
    ~QuestionUploads();

    void start(quint64 serial, std::vector<ChatFileAttachment> files);
    // The question does not go: its files wait in the composer again.
    void giveBack(quint64 serial);
    void clear(); // what is under way is wanted by nobody

private:
    struct Job {
        std::vector<ChatFileAttachment> files;
        TaskScope scope; // last: its task ends before anything it uses
    };

    Task<void> run(quint64 serial);

    ComposerAttachments& m_attachments;
    Scheduler& m_scheduler;
    Done m_done;
    std::map<quint64, std::unique_ptr<Job>> m_jobs;
    std::vector<std::unique_ptr<Job>> m_ended; // until their tasks have left
    Timer m_sweep;
};

}
