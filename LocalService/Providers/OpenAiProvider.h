#pragma once

#include "Core/Asio.h"
#include "Providers/CurlLoop.h"
#include "Providers/Provider.h"
#include "Tools/PdfText.h"
#include "Tools/ToolBox.h"

#include <chrono>
#include <map>
#include <string>

namespace korvi::service {

struct OpenAiSettings {
    /// Up to "/chat/completions".
    std::string url;
    std::string key;
    /// For chats whose mode is not in `modelForMode`; empty: the mode itself.
    std::string model;
    std::map<std::string, std::string> modelForMode;
    bool allowPlainHttp = false;
    std::chrono::seconds idleTimeout{180};
    bool offersTools = true;
    /// Of a SearXNG-compatible endpoint; empty: no search.
    std::string searchUrl;
    /// Of the same endpoint's "/images/generations"; empty: no pictures.
    std::string imageModel;
};

/// Streams answers from any endpoint that speaks the chat completions protocol, and does what its model asks for on the
/// way: searches, pictures, documents, artifacts.
class OpenAiProvider : public Provider {
public:
    /// Throws std::runtime_error with a message for the user if the address cannot be used: the key and the conversation
    /// go over plain HTTP to this machine only, unless that is explicitly allowed.
    OpenAiProvider(
        asio::io_context& io, FileStore& files, PdfText& pdfText, Typesetter& typesetter, OpenAiSettings settings);

    std::unique_ptr<ProviderStream> start(const ProviderRequest& request, ProviderSink sink) override;

private:
    std::string modelFor(const std::string& mode) const;

    asio::io_context& io_;
    FileStore& files_;
    PdfText& pdfText_;
    OpenAiSettings settings_;
    CurlLoop curl_;
    ToolBox tools_;
};

}
