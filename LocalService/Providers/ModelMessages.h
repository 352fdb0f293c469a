#pragma once

#include "Files/FileStore.h"
#include "Providers/Provider.h"
#include "Tools/PdfText.h"

#include <functional>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace korvi::service {

/// A file of the conversation in the form in which a model can take it.
struct Attachment {
    /// Of a picture.
    std::string dataUrl;
    /// Of anything that can be read; may be cut.
    std::string text;
};
/// By stored address.
using Attachments = std::map<std::string, Attachment>;

/// Reads the files that users have attached, the newest first, as far as a request has room for them. Destroying it stops
/// the reading.
class AttachmentReader {
public:
    /// `onEnd` is called later, not from inside the constructor.
    AttachmentReader(asio::io_context& io, FileStore& files, PdfText& pdfText, const std::vector<ProviderTurn>& history,
        std::function<void(Attachments)> onEnd);

private:
    void next();
    void read(const std::string& address);
    void keepText(const std::string& address, std::string text);

    FileStore& files_;
    PdfText& pdfText_;
    std::vector<std::string> waiting_;
    Attachments read_;
    std::size_t pictureBytes_ = 0;
    std::size_t textBytes_ = 0;
    int pdfs_ = 0;
    std::function<void(Attachments)> onEnd_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
    std::shared_ptr<void> reading_;
};

/// The conversation in the protocol's form, the newest turns that a request has room for.
nlohmann::json modelMessages(const std::vector<ProviderTurn>& history, const Attachments& attachments);

}
