#pragma once

#include "Chat/AttachmentUploader.h"
#include "Scheduler.h"

#include <map>
#include <memory>

namespace Korvi {

class AnswerStream;
class ComposerAttachments;

// The files of questions that are held until these are at the service: then the questions are supplied with them, or
// withdrawn when they have nothing else to say and none has arrived. Main thread only.
class QuestionUploads {
public:
    using Uploaded = AttachmentUploader::Uploaded;

    QuestionUploads(ComposerAttachments& attachments, AnswerStream& stream, Scheduler& scheduler);
    ~QuestionUploads();

    void start(quint64 serial, std::vector<ChatFileAttachment> files);
    // The question does not go: its files wait in the composer again. False if they are not here, but were with a client
    // that has ended.
    bool giveBack(quint64 serial);
    void clear(); // what is under way is wanted by nobody

private:
    struct Job {
        std::vector<ChatFileAttachment> files;
        TaskScope scope; // last: its task ends before anything it uses
    };

    Task<void> run(quint64 serial);
    void supply(quint64 serial, const Uploaded& uploaded);

    ComposerAttachments& m_attachments;
    AnswerStream& m_stream;
    Scheduler& m_scheduler;
    std::map<quint64, std::unique_ptr<Job>> m_jobs;
    std::vector<std::unique_ptr<Job>> m_ended; // until their tasks have left
    Timer m_sweep;
};

}
